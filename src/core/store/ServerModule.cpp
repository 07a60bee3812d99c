#include "store/ServerModule.h"

#include "platform/RuntimeError.h"

#include <dlfcn.h>

namespace KAL_AUTO_Node {

namespace {

OpenServerFunction* Load() {
    // It stays: errors of its making outlive their connections.
    void* const library = dlopen(ServerLibrary, RTLD_NOW | RTLD_LOCAL);
    void* const function = library != nullptr ? dlsym(library, OpenServerName) : nullptr;
    if (function == nullptr) {
        const char* why = dlerror();
        throw RuntimeError(ErrorNumber::CannotCreateComponent,
                           std::string("The library for stores on a server cannot be loaded: ") +
                               (why != nullptr ? why : ServerLibrary));
    }
    return reinterpret_cast<OpenServerFunction*>(function);
}

} // namespace

std::unique_ptr<Connection> OpenServer(const std::string& uri, ServerUse use, const Waits& waits) {
    static OpenServerFunction* const open = Load();
    return std::unique_ptr<Connection>(open(uri.c_str(), use, waits));
}

} // namespace KAL_AUTO_Node
