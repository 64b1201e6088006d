#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <initializer_list>

namespace platform {

/// SHA-256 of the parts in their order, 32 bytes.
QByteArray sha256(std::initializer_list<QByteArrayView> parts);

}  // namespace platform
