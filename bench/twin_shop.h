#pragma once

// One shop twice: in slapd and in a file of the embedded directory.

#include <algorithm>
#include <cctype>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/embedded/transfer/loader.h"
#include "suite/directory/names/listing_order.h"
#include "suite/directory/policy/password_hash.h"
#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"

namespace orvo {

// Nobody waits for the disk but those who make the embedded one durable; slapd_waits_for_disk()
// lets the server do the same. Ten users more than were asked for have the role 77.
class TwinShop {
public:
    static constexpr std::size_t ten_thousand = 10'000;

    explicit TwinShop(std::int64_t users) : file_(folder_.path() / "shop.db") {
        const auto shop =
            folder_.write("shop.ldif", output_of({ORVO_SOURCE_DIR "/examples/directory/make-shop",
                                                  "--users", std::to_string(users)}));
        const auto few = folder_.write("few.ldif", users_with_the_rare_role());
        load({shop, few});
        slapd_ = std::make_unique<PrivateSlapd>(SlapdOptions{
            .config = "maxsize 8589934592\n"
                      "limits dn.exact=cn=orvo-service,ou=Services,o=Shop size=unlimited",
            .shop = shop,
            .ldif = {few}});
        std::filesystem::remove(shop);
    }

    PrivateSlapd& slapd() { return *slapd_; }
    const std::filesystem::path& file() const { return file_; }
    double file_mebibytes() const {
        return static_cast<double>(std::filesystem::file_size(file_)) / (1 << 20);
    }

    // Users with simple names, in no particular order; another one at each call.
    const std::string& next_user() { return users_[(drawn_ += 7919) % users_.size()]; }
    // The ten-thousandth user in the order of lists; in a smaller shop the middle one.
    const std::string& user_far_behind() const { return far_behind_; }

    void slapd_waits_for_disk() {
        slapd_->stop();
        const auto file = slapd_->folder() / "slapd.conf";
        std::string text = content_of(file);
        const std::string line = "\ndbnosync\n";
        if (const std::size_t at = text.find(line); at != std::string::npos) {
            text.replace(at, line.size(), "\n");
            std::ofstream(file) << text;
        }
        slapd_->start();
    }

private:
    static std::string users_with_the_rare_role() {
        std::string ldif;
        for (const char digit : std::string_view("0123456789")) {
            const std::string name = std::string("rare") + digit;
            ldif += "dn: cn=" + name + ",ou=Users,o=Shop\nobjectClass: orvoPerson\n" +
                    "objectClass: top\ncn: " + name + "\nOrvoUserType: 1\nOrvoRole: 77\n\n";
        }
        return ldif;
    }

    void load(const std::vector<std::filesystem::path>& files) {
        namespace embedded = directory::embedded;
        std::vector<std::pair<std::string, std::string>> listed;  // key, name
        embedded::Store::create(file_, directory::Schema::of_product());
        {
            const auto store = embedded::Store::open(file_);
            embedded::Loader loader(*store, embedded::time_of_day(), directory::HashCost::usual);
            loader.set_setting(embedded::store_setting::access,
                               embedded::AccessRules::text_of_product("o=Shop"));
            for (const auto& file : files) {
                std::ifstream in(file);
                directory::LdifReader reader(in);
                while (auto record = reader.next()) {
                    note(record->entry.name, listed);
                    loader.take(*std::move(record));
                }
            }
            loader.commit();
        }
        const std::size_t place = std::min(ten_thousand, listed.size() / 2);
        std::ranges::nth_element(listed, listed.begin() + static_cast<std::ptrdiff_t>(place));
        far_behind_ = listed[place].second;
    }

    // The raw client escapes nothing.
    void note(const std::string& entry, std::vector<std::pair<std::string, std::string>>& listed) {
        const std::string_view container = ",ou=Users,o=Shop";
        if (!entry.starts_with("cn=") || !entry.ends_with(container)) return;
        const std::string name = entry.substr(3, entry.size() - 3 - container.size());
        listed.emplace_back(directory::listing_key(name), name);
        if (std::ranges::all_of(name, [](unsigned char c) { return std::isalnum(c); }))
            users_.push_back(name);
    }

    TempFolder folder_;
    std::filesystem::path file_;
    std::unique_ptr<PrivateSlapd> slapd_;
    std::vector<std::string> users_;
    std::string far_behind_;
    std::size_t drawn_ = 0;
};

}  // namespace orvo
