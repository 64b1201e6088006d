#include "platform/Wipe.h"

#include <sodium.h>

namespace platform {

void wipe(QString* text) {
    if (text->isDetached()) sodium_memzero(text->data(), size_t(text->size()) * sizeof(QChar));
    text->clear();
}

}  // namespace platform
