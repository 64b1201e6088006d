#include "rovana-sync/Digests.h"

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <stdexcept>

#include "books/Documents.h"

namespace terminal_sync {
namespace {

void digest(std::span<const QByteArrayView> parts, uchar* bytes) {
    // The algorithm is looked up once: OpenSSL takes longer for that than for a slip.
    static EVP_MD* const algorithm = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    thread_local const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                                       EVP_MD_CTX_free);
    bool isDone = EVP_DigestInit_ex2(context.get(), algorithm, nullptr) == 1;
    for (const QByteArrayView part : parts)
        isDone = isDone && EVP_DigestUpdate(context.get(), part.data(), std::size_t(part.size())) == 1;
    if (!isDone || EVP_DigestFinal_ex(context.get(), bytes, nullptr) != 1)
        throw std::runtime_error("no SHA-256");
}

}  // namespace

void useProcessorsDigests() {
    books::useSha256(digest);
}

QByteArray sha256(QByteArrayView content) {
    QByteArray bytes(32, Qt::Uninitialized);
    digest(std::array{content}, reinterpret_cast<uchar*>(bytes.data()));
    return bytes;
}

}  // namespace terminal_sync
