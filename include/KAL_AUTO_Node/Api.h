#pragma once

#if defined(__GNUC__)
#define KAL_AUTO_NODE_API __attribute__((visibility("default")))
#else
#define KAL_AUTO_NODE_API
#endif
