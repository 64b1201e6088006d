#include "rovana-office/Scram.h"

#include <sodium.h>

#include <string_view>

namespace office {
namespace {

using platform::SecureBytes;

constexpr int kIterations = 4096;  ///< PostgreSQL's own number.
constexpr std::size_t kSaltBytes = 16;
constexpr std::size_t kPasswordBytes = 24;

SecureBytes hmac(const SecureBytes& key, std::string_view text) {
    SecureBytes code(crypto_auth_hmacsha256_BYTES);
    crypto_auth_hmacsha256_state state;
    crypto_auth_hmacsha256_init(&state, key.data(), key.size());
    crypto_auth_hmacsha256_update(&state, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    crypto_auth_hmacsha256_final(&state, code.data());
    sodium_memzero(&state, sizeof state);
    return code;
}

std::string_view textOf(const SecureBytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// One block of PBKDF2, which is as long as a key of SHA-256.
SecureBytes saltedPassword(const SecureBytes& password, const std::string& salt) {
    SecureBytes round = hmac(password, salt + std::string("\0\0\0\1", 4));
    SecureBytes salted = round;
    for (int i = 1; i < kIterations; ++i) {
        round = hmac(password, textOf(round));
        for (std::size_t at = 0; at < salted.size(); ++at) salted[at] ^= round[at];
    }
    return salted;
}

SecureBytes base64Bytes(const unsigned char* bytes, std::size_t size) {
    SecureBytes text(sodium_base64_encoded_len(size, sodium_base64_VARIANT_ORIGINAL));
    sodium_bin2base64(reinterpret_cast<char*>(text.data()), text.size(), bytes, size,
                      sodium_base64_VARIANT_ORIGINAL);
    text.pop_back();  // the terminating zero
    return text;
}

std::string base64(const SecureBytes& bytes) {
    return std::string(textOf(base64Bytes(bytes.data(), bytes.size())));
}

}  // namespace

platform::SecureText randomPassword() {
    SecureBytes bytes(kPasswordBytes);
    randombytes_buf(bytes.data(), bytes.size());
    const SecureBytes text = base64Bytes(bytes.data(), bytes.size());
    platform::SecureText password;
    password.assign(QByteArrayView(text.data(), qsizetype(text.size())));
    return password;
}

std::string scramVerifier(const platform::SecureText& password) {
    SecureBytes bytes;
    for (const QChar character : password.view()) bytes.push_back(uchar(character.toLatin1()));
    SecureBytes salt(kSaltBytes);
    randombytes_buf(salt.data(), salt.size());
    const SecureBytes salted = saltedPassword(bytes, std::string(textOf(salt)));
    const SecureBytes clientKey = hmac(salted, "Client Key");
    SecureBytes storedKey(crypto_hash_sha256_BYTES);
    crypto_hash_sha256(storedKey.data(), clientKey.data(), clientKey.size());
    return "SCRAM-SHA-256$" + std::to_string(kIterations) + ':' + base64(salt) + '$' + base64(storedKey) +
           ':' + base64(hmac(salted, "Server Key"));
}

}  // namespace office
