#include <system_error>

#include "platform/output/journal.h"

namespace orvo {

void write_to_journal(std::string_view, std::string_view, const std::filesystem::path&) {
    throw std::system_error(std::make_error_code(std::errc::not_supported));
}

}  // namespace orvo
