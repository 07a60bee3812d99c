#pragma once

#include <QObject>
#include <QSize>

namespace KAL_AUTO_Node {

// The room that the rows' small icons take in the lists that share it; rows without an icon leave it to their
// text.
class ImageList : public QObject {
  public:
    using QObject::QObject;

    QSize ImageSize{16, 16};
};

} // namespace KAL_AUTO_Node
