#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <optional>

#include "platform/SecureBytes.h"

/// The file by which a terminal reaches the office: `rovana-office enrol` writes it, `rovana-sync` reads it.
namespace office {

/// Where the office is and how the terminal proves who it is: by a password, or by a certificate and its key.
struct Access {
    QString host;  ///< As the server's certificate names it.
    QString port;
    QString database;
    QString user;                   ///< The role of the terminal.
    platform::SecureText password;  ///< Empty with a certificate.
    QByteArray authority;           ///< The certificate, PEM, that the server's must be signed by.
    QByteArray certificate;         ///< PEM; empty with a password.
    platform::SecureBytes key;      ///< The certificate's, PEM.
};

/// The file's text: lines "name = value", then the PEM blocks, each after its name in brackets.
platform::SecureBytes accessText(const Access& access);

/// What such a text says; nothing, with the reason in `error` (which holds no value), when it is none.
std::optional<Access> readAccess(QByteArrayView text, QString* error);

}  // namespace office
