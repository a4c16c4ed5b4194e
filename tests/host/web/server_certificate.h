#pragma once

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {

// A certificate for the loopback address, and its key, of a test's own.
struct ServerCertificate {
    ServerCertificate() {
        output_of({"/usr/bin/openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                   "ec_paramgen_curve:P-256", "-noenc", "-days", "2", "-subj", "/CN=localhost",
                   "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", file});
    }

    TempFolder folder;
    const std::string file = folder.path() / "cert.pem";
    const std::string key = folder.path() / "key.pem";
};

}  // namespace orvo::web
