#include "suite/audit/suite_audit.h"

#include <map>
#include <system_error>

#include "platform/output/journal.h"
#include "suite/audit/audit_settings.h"
#include "suite/audit/calling_page.h"
#include "suite/configuration/ini_files.h"
#include "suite/log/log_entry.h"
#include "suite/log/tell_log.h"

namespace orvo::audit {
namespace {

constexpr const char16_t* source = u"OrvoSuite.Audit";
constexpr std::int32_t file_not_writable = 75;  // Automation's own number for that

RotatingFile& file_of(const Settings& settings) {
    static std::mutex mutex;
    static std::map<std::pair<std::filesystem::path, Rotation>, RotatingFile> files;
    const std::lock_guard lock(mutex);
    return files.try_emplace({settings.file, settings.rotation}, settings.file, settings.rotation)
        .first->second;
}

[[noreturn]] void raise_not_written(const Text& where, const std::system_error& reason) {
    throw Failure(
        file_not_writable, source,
        where + u": the audit cannot be written (" + from_utf8(reason.code().message()) + u")");
}

void write(const Settings& settings, const std::string& line) {
    if (!settings.file.empty()) try {
            RotatingFile& file = file_of(settings);
            if (settings.sync)
                file.append_on_disk(line + '\n');
            else
                file.append(line + '\n');
        } catch (const std::system_error& reason) {
            raise_not_written(text_of(settings.file), reason);
        }
    if (settings.journal) try {
            write_to_journal("orvo-audit", line);
        } catch (const std::system_error& reason) {
            raise_not_written(u"the journal", reason);
        }
}

}  // namespace

Boolean SuiteAudit::IsOn() { return settings_of_site().is_on(); }

void SuiteAudit::Record(const Text& event, const Text& result, const Text& user, const Text& by,
                        const Text& server, const Text& what) {
    const Settings settings = settings_of_site();
    if (!settings.is_on()) return;
    const std::string line =
        json_line({std::chrono::system_clock::now(), event, result, user, by,
                   address_of_calling_page(), server, what, request_of_calling_page()});
    try {
        write(settings, line);
    } catch (const Failure& failure) {
        tell_log(source, failure.description + u"; lost: " + from_utf8(line), log_level_error);
        if (settings.sync) throw;
    }
}

}  // namespace orvo::audit
