#pragma once

#include "service/Auth.h"
#include "service/Client.h"
#include "service/MemorySecretStore.h"

#include "StoredSignIn.h"

#include <memory>

namespace KestroTest {

// The process's client, signed in at a kestro-devservice started with
// --auto-approve (its consent page sends the callback at once), tokens in
// memory.
struct DevServiceSession {
    Kestro::MemorySecretStore store;
    std::unique_ptr<Kestro::Auth> auth;
    std::unique_ptr<Kestro::Client> client;

    explicit DevServiceSession(const QUrl& origin)
    {
        auth = std::make_unique<Kestro::Auth>(origin, store);
        signIn(*auth);
        client = std::make_unique<Kestro::Client>(origin, *auth);
        Kestro::Client::setShared(client.get());
    }
    ~DevServiceSession() { Kestro::Client::setShared(nullptr); }
};

} // namespace KestroTest
