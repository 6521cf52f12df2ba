#pragma once

#include "FakeService.h"

#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/Client.h"
#include "service/MemorySecretStore.h"

#include <memory>

namespace KestroTest {

// A client signed in at a fake service on 127.0.0.1, with tokens good for
// an hour kept in memory.
struct SignedInClient {
    FakeService service;
    Kestro::MemorySecretStore store;
    std::unique_ptr<Kestro::Auth> auth;
    std::unique_ptr<Kestro::Client> client;
    QString access;

    SignedInClient()
    {
        if (!service.start())
            qFatal("The test server could not listen on 127.0.0.1.");
        auth = std::make_unique<Kestro::Auth>(service.origin(), store);
        const auto [a, r] = service.issueTokens();
        access = a;
        Kestro::blockingWait(
            auth->store(Kestro::Tokens{a, r, QDateTime::currentDateTimeUtc().addSecs(3600)}));
        client = std::make_unique<Kestro::Client>(service.origin(), *auth);
    }
};

} // namespace KestroTest
