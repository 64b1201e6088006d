#pragma once

#include <string>

#include "platform/SecureBytes.h"

namespace office {

/// A new password of 192 random bits, in the characters of Base64.
platform::SecureText randomPassword();

/// What PostgreSQL keeps in the place of a password that logs in by SCRAM-SHA-256; with a salt of its own at
/// each call. The server is told this alone, so that no log of it can hold the password.
std::string scramVerifier(const platform::SecureText& password);

}  // namespace office
