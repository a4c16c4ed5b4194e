#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

#include "platform/linux/manifest.h"
#include "platform/linux/runtime_calls.h"
#include "platform/linux/search_path.h"
#include "platform/linux/thread_error.h"
#include "platform/values/text.h"

namespace orvo::runtime {

namespace {

using std::filesystem::path;

struct Refusal {
    abi::HRESULT number;
    std::string reason;
};

[[noreturn]] void refuse(abi::HRESULT number, const std::string& reason) {
    throw Refusal{number, reason};
}

[[noreturn]] void refuse_with_system_error(const std::string& what, int error) {
    bool denied = error == EACCES || error == EPERM || error == EROFS;
    refuse(denied ? abi::e_accessdenied : abi::e_fail,
           what + ": " + std::generic_category().message(error));
}

path module_of(const void* inside) {
    Dl_info info{};
    if (!dladdr(inside, &info) || !info.dli_fname)
        refuse(abi::e_fail, "The system does not tell the file of the module to be registered.");
    return std::filesystem::canonical(info.dli_fname);
}

path manifest_of(const std::string& name) {
    if (name.empty() || name.find('/') != std::string::npos || name.front() == '.')
        refuse(abi::e_invalidarg, "\"" + name + "\" is no module name.");
    std::optional<path> folder = registration_folder();
    if (!folder)
        refuse(abi::e_fail, "There is no folder for the manifest of " + name +
                                ": neither ORVO_COMPONENTS, XDG_DATA_HOME nor HOME names one.");
    return *folder / (name + manifest_ending);
}

// A file that is there only until it is renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const path& beside) : name_(beside.string() + ".XXXXXX") {
        descriptor_ = mkostemp(name_.data(), 0);
    }
    ~TemporaryFile() {
        if (descriptor_ < 0) return;
        close(descriptor_);
        if (!renamed_) unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool write(const std::string& content) {
        if (descriptor_ < 0) return false;
        for (std::size_t done = 0; done < content.size();) {
            ssize_t written = ::write(descriptor_, content.data() + done, content.size() - done);
            if (written < 0 && errno != EINTR) return false;
            if (written > 0) done += static_cast<std::size_t>(written);
        }
        // Everybody may read a manifest.
        return fchmod(descriptor_, 0644) == 0 && fsync(descriptor_) == 0;
    }

    bool rename_to(const path& file) {
        renamed_ = rename(name_.c_str(), file.c_str()) == 0;
        return renamed_;
    }

private:
    std::string name_;
    int descriptor_;
    bool renamed_ = false;
};

void write_manifest(const void* inside, const std::string& name,
                    std::span<const OrvoModuleClass> classes) {
    path file = manifest_of(name);
    std::vector<ManifestClass> entries;
    for (const OrvoModuleClass& entry : classes) {
        const std::u16string progid = entry.progid ? entry.progid : u"";
        if (!is_progid(progid))
            refuse(abi::e_invalidarg, "\"" + to_utf8(progid) + "\" is no ProgID.");
        entries.push_back({entry.clsid, progid});
    }
    path module;
    try {
        module = module_of(inside);
        std::filesystem::create_directories(file.parent_path());
    } catch (const std::filesystem::filesystem_error& error) {
        refuse_with_system_error("The manifest " + file.string() + " cannot be written",
                                 error.code().value());
    }
    if (module.string().find('\n') != std::string::npos)
        refuse(abi::e_invalidarg, "A manifest cannot hold the path " + module.string());
    TemporaryFile temporary(file);
    if (!temporary.write(manifest_text(name, module, entries)) || !temporary.rename_to(file))
        refuse_with_system_error("The manifest " + file.string() + " cannot be written", errno);
}

// Whether there was one.
bool remove_manifest(const std::string& name) {
    path file = manifest_of(name);
    if (unlink(file.c_str()) == 0) return true;
    if (errno != ENOENT && errno != ENOTDIR)
        refuse_with_system_error("The manifest " + file.string() + " cannot be removed", errno);
    return false;
}

template <class Body>
abi::HRESULT reported(Body body) noexcept {
    try {
        const abi::HRESULT outcome = body();
        OrvoForgetManifests();
        return outcome;
    } catch (const Refusal& refusal) {
        set_thread_error(refusal.reason);
        return refusal.number;
    } catch (const std::bad_alloc&) {
        set_thread_error({});
        return abi::e_outofmemory;
    } catch (const std::exception& error) {
        set_thread_error(error.what());
        return abi::e_fail;
    }
}

std::string utf8_name(const char16_t* name) { return name ? to_utf8(name) : std::string(); }

}  // namespace

abi::HRESULT OrvoRegisterModule(const void* inside, const char16_t* name,
                                const OrvoModuleClass* classes, std::uint32_t count) {
    return reported([&] {
        write_manifest(inside, utf8_name(name), {classes, count});
        return abi::s_ok;
    });
}

abi::HRESULT OrvoUnregisterModule(const char16_t* name) {
    return reported([&] { return remove_manifest(utf8_name(name)) ? abi::s_ok : abi::s_false; });
}

}  // namespace orvo::runtime
