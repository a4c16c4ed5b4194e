#pragma once

#include <memory>
#include <optional>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/entries/failure_note.h"
#include "suite/directory/entries/throttled.h"

namespace orvo {
namespace directory::embedded {

// Checks of passwords against a directory in a file. Each computes the hash, counts a failure once,
// and says what the password policy has to say of the account. The site's throttle stands in front.
// Used by one thread.
class EmbeddedValidator final : public DirectoryValidator {
public:
    // Opens nothing yet: the first check does.
    void Open(Text& server, Text& user_container) override;
    // An empty password, and a path that is not below the container, are wrong without asking, and
    // no attempts for the throttle.
    // Raises 91 before Open, 34 for a container that is no name, 0x8007203A where the file cannot
    // be used.
    std::int32_t Validate(Variant& path, Variant& password) override;

    void failed(const char* operation, const Failure& failure) const noexcept {
        note_failure(operation, to_utf8(container_), failure);
    }

private:
    CheckAnswer check_password(TextView written, const Secret& secret);
    std::int32_t ask_directory(const std::string& name, const Secret& secret);

    bool is_open_ = false;
    Text server_;
    Text container_;  // as it was given
    std::optional<DistinguishedName> container_name_;
    std::shared_ptr<Directory> directory_;
};

}  // namespace directory::embedded

template <>
inline constexpr auto class_of<directory::embedded::EmbeddedValidator> =
    describe_class<DirectoryValidator>("OrvoDirectory.Embedded");

}  // namespace orvo
