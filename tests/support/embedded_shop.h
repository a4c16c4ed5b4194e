#pragma once

#include <functional>
#include <memory>

#include "suite/directory/embedded/store/store.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_directory.h"

namespace orvo {

// The shop in a file, for the embedded directory: with the product's schema, the access rules that
// the sample server has, and passwords in clear text hashed.
class EmbeddedShop final : public TestDirectory {
public:
    explicit EmbeddedShop(const DirectoryOptions& options);

    std::string server() const override { return file_.string(); }
    std::filesystem::path site_ini() const override { return site_ini_; }
    std::string own(const Difference& difference) const override { return difference.embedded; }

    std::vector<std::string> find(const std::string& base, const std::string& filter) override;
    std::vector<std::string> values(const std::string& dn, const std::string& attribute) override;
    int replace(const std::string& dn, const std::string& attribute,
                const std::vector<std::string>& values) override;
    int add(
        const std::string& dn,
        const std::vector<std::pair<std::string, std::vector<std::string>>>& attributes) override;
    int remove(const std::string& dn) override;
    int bind(const std::string& dn, const std::string& password) override;
    // Without passwords: a right login may hash one anew.
    std::map<std::string, std::string> everything() override;

private:
    TempFolder folder_;
    std::filesystem::path file_;
    std::filesystem::path site_ini_;
    std::shared_ptr<directory::embedded::Store> store_;
};

}  // namespace orvo
