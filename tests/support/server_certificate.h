#pragma once

#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/slapd.h"

namespace orvo {

// Gives a server with `tls` another certificate of its own, made with these options of `openssl
// x509`, and starts it anew.
inline void replace_certificate(PrivateSlapd& server, const std::string& subject,
                                const std::vector<std::string>& options) {
    server.stop();
    const std::string tls = (server.folder() / "tls").string();
    const std::string key = tls + "/key.pem", request = tls + "/request.pem";
    output_of({"/usr/bin/openssl", "req", "-new", "-key", key, "-subj", subject, "-out", request});
    std::vector<std::string> command = {
        "/usr/bin/openssl", "x509", "-req", "-in", request, "-signkey", key, "-out",
        tls + "/cert.pem"};
    command.insert(command.end(), options.begin(), options.end());
    output_of(command);
    server.start();
}

}  // namespace orvo
