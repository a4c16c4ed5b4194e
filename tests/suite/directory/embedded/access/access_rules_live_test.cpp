// The access rules beside those of a directory server, which tells of every right what it allows
// (slapacl): the product's rules, and others drawn at random.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/password_attributes.h"
#include "tests/suite/directory/embedded/access/access_fixture.h"
#include "tests/suite/directory/policy/directory_manager.h"

namespace orvo::directory::embedded {
namespace {

using Names = std::vector<std::string>;

class ComparedAccess : public testing::Test {
protected:
    ComparedAccess() : schema_(read_schema()) {}

    // Every right of somebody in an entry; the empty name is nobody's.
    void compare(const AccessRules& rules, const std::filesystem::path& configuration,
                 const std::string& who, const std::string& entry, const Names& attributes) {
        const Identity identity =
            who.empty() ? Identity::nobody() : Identity::of(dn(who), manager_.read(who));
        const std::map<std::string, std::string> theirs =
            rights(configuration, who, entry, attributes);
        for (const std::string& attribute : attributes) {
            const auto found = theirs.find(ascii::lower(attribute));
            ASSERT_NE(found, theirs.end()) << attribute;
            const auto allows = [&](char letter) {
                return found->second.find(letter) != std::string::npos;
            };
            const auto allow = [&](Right right) {
                return rules.allow(identity, right, dn(entry), attribute);
            };
            const std::string where = attribute + " of " + entry + " for '" + who + "'";
            EXPECT_EQ(allow(Right::read), allows('r') && !is_password(attribute)) << where;
            EXPECT_EQ(allow(Right::write), allows('w')) << where;
            EXPECT_EQ(allow(Right::authenticate), allows('x')) << where;
            ++compared_;
        }
    }

    // One name of each attribute that the server knows, and what stands for none.
    Names all_attributes() const {
        Names names = {"entry", "children"};
        for (const std::string& description : schema_->attribute_types) {
            const AttributeType* type =
                schema_->types.find(description.substr(2, description.find(' ', 2) - 2));
            if (type && !type->names.empty()) names.push_back(type->names.front());
        }
        return names;
    }

    std::filesystem::path configuration() const { return slapd_.folder() / "slapd.conf"; }

    PrivateSlapd slapd_;
    DirectoryManager manager_{slapd_};
    std::shared_ptr<const Schema> schema_;
    int compared_ = 0;

private:
    std::shared_ptr<const Schema> read_schema() {
        Names types;
        for (const Attribute& attribute : manager_.read("cn=Subschema").attributes)
            if (attribute.name == "attributeTypes") types = attribute.values;
        return std::make_shared<const Schema>(Schema::from_descriptions(std::move(types), {}));
    }

    // By attribute in lower case: the letters of what is allowed.
    std::map<std::string, std::string> rights(const std::filesystem::path& configuration,
                                              const std::string& who, const std::string& entry,
                                              const Names& attributes) {
        Names command = {"/usr/sbin/slapacl", "-f", configuration, "-b", entry};
        if (!who.empty()) command.insert(command.end(), {"-D", who});
        command.insert(command.end(), attributes.begin(), attributes.end());
        std::istringstream lines(output_of(command));
        std::map<std::string, std::string> rights;
        for (std::string line; std::getline(lines, line);) {
            const std::size_t colon = line.find(": "), sign = line.find('=', colon);
            if (colon == std::string::npos || sign == std::string::npos) continue;
            rights[ascii::lower(line.substr(0, colon))] = line.substr(sign + 1);
        }
        return rights;
    }
};

const std::string service = "cn=orvo-service,ou=Services,o=Shop";
const std::string admin = "cn=admin,ou=Users,o=Shop";
const std::string jsmith = "cn=jsmith,ou=Users,o=Shop";
const std::string glee = "cn=glee,ou=Users,o=Shop";

TEST_F(ComparedAccess, OfTheProductsRulesIsThatOfTheSampleServer) {
    const AccessRules rules = AccessRules::parse(AccessRules::text_of_product("o=Shop"), schema_);
    const Names attributes = all_attributes();
    ASSERT_GT(attributes.size(), 100u);
    const std::string below_user = "cn=below," + jsmith, unit = "ou=New,o=Shop";
    manager_.add(below_user, {{"objectClass", {"orvoPerson"}}, {"cn", {"below"}}});
    manager_.add(unit, {{"objectClass", {"organizationalUnit"}}, {"ou", {"New"}}});
    const Names entries = {"o=Shop",
                           "OU=users, o=shop",
                           jsmith,
                           glee,
                           admin,
                           below_user,
                           "ou=Profiles,o=Shop",
                           "cn=Buyers,ou=Profiles,o=Shop",
                           "ou=Accounts,o=Shop",
                           "cn=1,ou=Accounts,o=Shop",
                           "ou=Services,o=Shop",
                           service,
                           "ou=Groups,o=Shop",
                           "cn=Administrators,ou=Groups,o=Shop",
                           "ou=Config,o=Shop",
                           "cn=Directory,ou=Config,o=Shop",
                           unit};
    for (const std::string& who : {std::string(), service, admin, jsmith, glee})
        for (const std::string& entry : entries)
            compare(rules, configuration(), who, entry, attributes);
    EXPECT_EQ(compared_, 5 * static_cast<int>(entries.size() * attributes.size()));
}

// The same rules in both languages.
struct BothTexts {
    std::string ours =
        "group administrators\nentries one ou=Users,o=Shop\nfilter (OrvoUserType=4)\n";
    std::string theirs;
};

class RandomRules {
public:
    explicit RandomRules(unsigned seed) : random_(seed) {}

    BothTexts draw() {
        BothTexts texts;
        for (int count = below(6) + 1; count > 0; --count) append_rule(texts);
        texts.theirs += "access to * by * none\n";
        return texts;
    }

private:
    void append_rule(BothTexts& texts) {
        texts.ours += "rule\n";
        texts.theirs += "access to";
        const bool has_place = below(4) > 0;
        if (has_place) {
            const std::size_t scope = static_cast<std::size_t>(below(3));
            const std::string name =
                one_of({"o=Shop", "ou=Users,o=Shop", jsmith, "ou=Profiles,o=Shop"});
            texts.ours += "entries " + Names{"base", "one", "subtree"}[scope] + " " + name + "\n";
            texts.theirs += " dn." + Names{"base", "one", "subtree"}[scope] + "=\"" + name + "\"";
        }
        std::set<std::string> attributes;
        for (int count = below(4); count > 0; --count)
            attributes.insert(one_of({"sn", "mail", "cn", "entry", "children", "userPassword"}));
        std::string separator = " attrs=";
        for (const std::string& attribute : attributes) {
            texts.ours += "attributes " + attribute + "\n";
            texts.theirs += separator + attribute;
            separator = ",";
        }
        if (!has_place && attributes.empty()) texts.theirs += " *";
        for (int count = below(5); count > 0; --count) append_grant(texts);
        texts.theirs += " by * none\n";
    }

    void append_grant(BothTexts& texts) {
        const std::size_t right = static_cast<std::size_t>(below(4));
        const std::size_t whom = static_cast<std::size_t>(below(7));
        texts.ours += Names{"none", "authenticate", "read", "write"}[right] + " " +
                      Names{"name " + jsmith, "name " + service, "self",    "group administrators",
                            "users",          "anonymous",       "everyone"}[whom] +
                      "\n";
        texts.theirs += " by " +
                        Names{"dn.exact=\"" + jsmith + "\"",
                              "dn.exact=\"" + service + "\"",
                              "self",
                              "group/groupOfURLs/memberURL.exact=\"cn=Administrators,ou=Groups,"
                              "o=Shop\"",
                              "users",
                              "anonymous",
                              "*"}[whom] +
                        " " + Names{"none", "auth", "read", "write"}[right];
    }

    int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    std::string one_of(const Names& names) {
        return names[static_cast<std::size_t>(below(static_cast<int>(names.size())))];
    }

    std::mt19937 random_;
};

TEST_F(ComparedAccess, OfRandomRulesIsThatOfAServer) {
    const unsigned seed = std::random_device()();
    RandomRules random(seed);
    const std::string sample = content_of(configuration());
    const std::size_t begin = sample.find("access to"),
                      end = sample.find("database        monitor");
    for (int round = 0; round < 8; ++round) {
        const BothTexts texts = random.draw();
        SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + texts.ours + texts.theirs);
        const std::filesystem::path file = slapd_.folder() / "random.conf";
        std::ofstream(file) << sample.substr(0, begin) << texts.theirs << sample.substr(end);
        const AccessRules rules = AccessRules::parse(texts.ours, schema_);
        for (const std::string& who : {std::string(), service, admin, jsmith})
            for (const std::string& entry :
                 {std::string("o=Shop"), std::string("ou=Users,o=Shop"), jsmith, glee,
                  std::string("cn=Buyers,ou=Profiles,o=Shop")})
                compare(rules, file, who, entry,
                        {"entry", "children", "sn", "mail", "cn", "userPassword", "OrvoRole"});
        if (HasFailure()) return;
    }
    EXPECT_EQ(compared_, 8 * 4 * 5 * 7);
}

}  // namespace
}  // namespace orvo::directory::embedded
