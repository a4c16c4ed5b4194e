#pragma once

// The seam to the LDAP client library: one connection to a server, and what may be asked over it.
//
// Everything above speaks UTF-8 bytes, names and result codes through this header; no header of a
// client library is visible. A session is used by one thread at a time. Nothing here waits without
// a limit; on Windows finding a host's address and StartTLS are the system's to limit.
//
// Passwords are overwritten once they have been sent: on this side of the seam, and in the requests
// of OpenLDAP's library. What that keeps of a request of more than 4 KB, which it moves as it
// grows, and what the library that Windows ships keeps, cannot be reached from here.
//
// A refusal by the server is a value (Result), so that a caller can tell the codes apart; `check`
// turns it into a failure. Failures of the connection are codes of the client: 81 the connection is
// gone, 84 an answer that cannot be read, 85 no answer in time. After any of these three the
// session must be replaced: everything else that is asked of it fails with 81, unsent.

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/values/secret.h"
#include "suite/directory/entries/entry_data.h"
#include "suite/directory/ldap/wire/operation_figures.h"
#include "suite/directory/ldap/wire/server_address.h"
#include "suite/directory/settings/limits.h"

namespace orvo::directory::ldap {

// What came of one operation. Texts are the server's, or the client's for codes from 81.
struct Result {
    int code = 0;
    std::string message;
    std::string nearest_entry;
    // With code 10: the servers to ask instead, as URLs, as the server sent them.
    std::vector<std::string> referrals = {};
    // Only where the connection failed: whether anything of the request may have reached the
    // server. False where no byte of it has left; then it has certainly not been done.
    bool sent = true;

    bool ok() const { return code == 0; }
    // What was asked has been done, or nobody knows whether it has.
    bool may_be_done() const { return ok() || (connection_failed() && sent); }
    // The server cannot say now what it was asked.
    bool is_unavailable() const { return code == 51 || code == 52; }
    // The connection is gone, or of no use.
    bool connection_failed() const { return code == 81 || code == 84 || code == 85; }
};

// Raises the failure of a result that is not `success`.
void check(const Result& result);

// A control of a request or of its answer; `value` is BER, possibly empty.
struct Control {
    std::string oid;
    std::string value;
    // Of a request: a server that does not know it refuses (12), and does nothing.
    bool is_critical = false;
};

// Whether a bind asks for the password policy (draft-behera-ldap-password-policy, 6.1).
enum class Policy { not_asked, asked };
inline constexpr const char* policy_control = "1.3.6.1.4.1.42.2.27.8.5.1";

struct BindResult : Result {
    std::vector<Control> controls;
};

struct UpdateResult : Result {
    std::vector<Control> controls;
};

struct WhoAmIResult : Result {
    std::string identity;
};

struct ReadResult : Result {
    EntryData entry;
};

struct SearchRequest {
    std::string base;
    Scope scope = Scope::base;
    std::string filter = "(objectClass=*)";
    // Empty: all user attributes. {"1.1"}: none.
    std::vector<std::string> attributes;
    // Not 0: no more than so many entries in one answer (RFC 2696; collect_pages asks for one page
    // after the other). A server that has no pages answers as if it had not been asked for them.
    int page_size = 0;
    std::string page = {};  // the page wanted, as the answer before named it; empty: the first
    // Set: asked with each entry's name before the rest of it is decoded. An entry that is not
    // wanted is passed over, or handed over all the same where passing over would save nothing.
    std::function<bool(const std::string& name)> wanted = {};
};

struct SearchResult : Result {
    std::string next_page;  // the name of the page that follows; empty: none does
};

// One request after the other: each waits for its answer.
class Session {
public:
    // Connects to one host, encrypted where its address asks for it. Raises result code 81, 85 or
    // 91 where that fails, 82 where the connection cannot be set up on this side, with the host's
    // URL and the reason in the description.
    static Session connect(const ServerHost& host, const Limits& limits = {});
    // The same; nothing where it fails: `why` tells, its message without the URL.
    static std::optional<Session> try_connect(const ServerHost& host, const Limits& limits,
                                              Result& why);

    Session(Session&& other) noexcept;
    Session& operator=(Session&& other) noexcept;
    ~Session();  // takes leave of the server and closes; never waits

    // Whether the connection looks alive: the server has neither closed it nor sent anything that
    // nobody asked for. Asks the operating system alone; where that cannot tell, it looks alive.
    bool seems_open() const;
    // From now on. What there is to wait for in connecting is over.
    void set_limits(const Limits& limits);
    // What is asked from now on is counted there.
    void count_in(std::shared_ptr<OperationFigures> figures);

    // Simple authentication. Both empty: as nobody. The caller has refused an empty password with a
    // name (a server takes that for "nobody" and reports success). What the server's password
    // policy says of the account, where it is asked, is among the controls.
    BindResult bind(const std::string& name, const Secret& password,
                    Policy policy = Policy::not_asked);

    // One entry with the attributes asked for, as SearchRequest has them.
    ReadResult read(const std::string& name, const std::vector<std::string>& attributes);

    // Hands the entries over one by one, in the server's order, while the server still sends. What
    // is not moved out of an entry may serve the next as memory.
    // One of scope base is the reading of one entry, and has `answer`.
    SearchResult search(const SearchRequest& request, const std::function<void(EntryData&&)>& take);

    // A new entry; every attribute has a value.
    Result add(const std::string& name, std::span<const Attribute> attributes);
    Result remove(const std::string& name);

    // All changes, or none of them.
    UpdateResult modify(const std::string& name, std::span<const Replacement> replacements);

    // The Password Modify operation (RFC 3062); with the former password, unless it is empty, the
    // server does it only where that is the one.
    Result change_password(const std::string& name, const Secret& new_password,
                           const Secret& former_password = {});
    // The password of an Active Directory's user (unicodePwd). With the former one it is the user's
    // own change, whoever asks for it; with an empty one an administrator's.
    Result change_unicode_password(const std::string& name, const Secret& new_password,
                                   const Secret& former_password = {});

    // Go along with every request from now on that has no controls of its own (a bind that asks for
    // the policy, a search with pages); an empty list: none any more. Raises 92 on Windows.
    void set_controls(std::span<const Control> controls);
    // The server's certificate (X.509, DER); empty where the connection is not encrypted, and on
    // Windows.
    std::string certificate() const;

    // Whom the server takes this session for (RFC 4532): "dn:" and a name, empty for nobody.
    WhoAmIResult who_am_i();

private:
    struct Connection;
    explicit Session(std::unique_ptr<Connection> connection);
    UpdateResult modify(const std::string& name, std::span<const Replacement> replacements,
                        OperationKind kind);
    std::unique_ptr<Connection> connection_;
};

}  // namespace orvo::directory::ldap
