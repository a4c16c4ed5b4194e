// The rules for entries, put to a real server.

#include <gmock/gmock.h>

#include <cstdint>
#include <sstream>

#include "suite/directory/schema/entry_change.h"
#include "suite/directory/schema/entry_check.h"
#include "tests/suite/directory/schema/refused_entries.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory {
namespace {

using testing::UnorderedElementsAreArray;

struct Said {
    int code;
    std::string sentence;

    bool operator==(const Said&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Said& said) {
        return out << said.code << " " << said.sentence;
    }
};

std::string text_of(const std::vector<Attribute>& attributes) {
    std::ostringstream text;
    for (const Attribute& one : attributes) {
        text << one.name << " {";
        for (const std::string& value : one.values) text << " '" << value << "'";
        text << " } ";
    }
    return text.str();
}

std::string text_of(const std::vector<Replacement>& changes) {
    std::ostringstream text;
    for (const Replacement& one : changes)
        text << static_cast<int>(one.kind) << " "
             << text_of(std::vector{Attribute{one.attribute, one.values}});
    return text.str();
}

class TheServer : public testing::Test {
protected:
    static void SetUpTestSuite() {
        slapd_ = std::make_unique<PrivateSlapd>(SlapdOptions{.password_policy = true});
    }
    static void TearDownTestSuite() { slapd_.reset(); }

    TheServer() : root(slapd_->url(), slapd_->root_dn(), slapd_->root_password()) {}

    Said add(const EntryData& entry) {
        std::vector<std::pair<std::string, std::vector<std::string>>> attributes;
        for (const Attribute& one : entry.attributes) attributes.emplace_back(one.name, one.values);
        const int code = root.add(entry.name, attributes);
        return {code, root.last_sentence()};
    }
    Said change(const std::string& name, const std::vector<Replacement>& changes) {
        std::vector<LdapProbe::Change> sent;
        for (const Replacement& one : changes)
            sent.push_back({static_cast<int>(one.kind), one.attribute, one.values});
        const int code = root.modify(name, sent);
        return {code, root.last_sentence()};
    }

    LdapProbe root;

private:
    static inline std::unique_ptr<PrivateSlapd> slapd_;
};

TEST_F(TheServer, SaysToEachNewEntryWhatTheTableSays) {
    for (const AddCase& one : add_cases()) {
        const EntryData entry{full_case_name(one.name), one.attributes};
        EXPECT_EQ(add(entry), (Said{one.code, one.sentence}))
            << one.name << " " << text_of(one.attributes);
        root.remove(entry.name);
    }
}

TEST_F(TheServer, SaysToEachChangeWhatTheTableSaysAndStoresTheSame) {
    for (const ChangeCase& one : change_cases()) {
        SCOPED_TRACE(text_of(one.changes));
        EntryData entry = sample_entry();
        ASSERT_EQ(add(entry).code, 0);
        EXPECT_EQ(change(entry.name, one.changes), (Said{one.code, one.sentence}));
        if (one.code == 0) {
            apply_changes(Schema::of_product(), entry, one.changes);
            for (const Attribute& held : entry.attributes)
                EXPECT_EQ(root.values(entry.name, held.name), held.values);
        }
        root.remove(entry.name);
    }
}

// The same numbers for the same seed on every machine.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : state_(seed) {}
    std::size_t roll(std::size_t sides) {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<std::size_t>(state_ >> 33) % sides;
    }
    const std::string& one_of(const std::vector<std::string>& texts) {
        return texts[roll(texts.size())];
    }
    std::vector<std::string> some_of(const std::vector<std::string>& texts, std::size_t most) {
        std::vector<std::string> some;
        for (std::size_t left = 1 + roll(most); left > 0; --left) some.push_back(one_of(texts));
        return some;
    }

private:
    std::uint64_t state_;
};

const std::vector<std::string> class_names = {"top",
                                              "person",
                                              "PERSON",
                                              "organizationalPerson",
                                              "orvoPerson",
                                              "orvoMember",
                                              "orvoUser",
                                              "simpleSecurityObject",
                                              "extensibleObject",
                                              "orvoProfile",
                                              "nosuch"};
const std::vector<std::string> attribute_names = {"cn",
                                                  "sn",
                                                  "SURNAME",
                                                  "givenName",
                                                  "mail",
                                                  "OrvoGUID",
                                                  "orvoguid",
                                                  "OrvoRole",
                                                  "OrvoUserType",
                                                  "userPassword",
                                                  "facsimileTelephoneNumber",
                                                  "seeAlso",
                                                  "serialNumber",
                                                  "sn;lang-de",
                                                  "sn;lang-DE",
                                                  "modifyTimestamp",
                                                  "nosuch",
                                                  "CreditCardExpiryDate"};
const std::vector<std::string> some_values = {
    "1", "2", "x", "X", "y", "cn=x", "20281231000000Z", "1 ", " 1", "-1", "x  y", "X y", ""};

Attribute random_attribute(Dice& dice) {
    const std::string& name = dice.one_of(attribute_names);
    // The server's password policy allows no second one.
    return {name, dice.some_of(some_values, name == "userPassword" ? 1 : 2)};
}

TEST_F(TheServer, SaysToRandomEntriesWhatTheRulesSay) {
    constexpr std::uint64_t seed = 20240611;
    Dice dice(seed);
    int taken = 0;
    for (int count = 0; count < 1500; ++count) {
        EntryData entry{full_case_name(dice.one_of({"cn=x", "sn=x", "OrvoGUID=x", "cn=x+sn=y",
                                                    "nosuch=x", "modifyTimestamp=x"})),
                        {{"objectClass", dice.some_of(class_names, 3)}}};
        if (dice.roll(3) > 0) entry.attributes[0].values.push_back("orvoPerson");
        for (std::size_t left = dice.roll(4); left > 0; --left)
            entry.attributes.push_back(random_attribute(dice));
        const std::string given = entry.name + " " + text_of(entry.attributes);
        const Said said = add(entry);
        const std::string name = entry.name;
        const Refusal refusal = check_new_entry(Schema::of_product(), entry);
        EXPECT_EQ((Said{refusal.code, refusal.message}), said)
            << given << " (seed " << seed << ", entry " << count << ")";
        if (said.code != 0) continue;
        ++taken;
        for (const Attribute& held : entry.attributes)
            EXPECT_THAT(root.values(name, held.name), UnorderedElementsAreArray(held.values))
                << given << " " << held.name;
        root.remove(name);
    }
    EXPECT_GT(taken, 30);
}

TEST_F(TheServer, SaysToRandomChangesWhatTheRulesSay) {
    constexpr std::uint64_t seed = 77;
    Dice dice(seed);
    const std::string name = sample_entry().name;
    ASSERT_EQ(add(sample_entry()).code, 0);
    EntryData held = sample_entry();
    int taken = 0;
    for (int count = 0; count < 1500; ++count) {
        std::vector<Replacement> changes;
        for (std::size_t left = 1 + dice.roll(2); left > 0; --left) {
            Attribute one = random_attribute(dice);
            if (dice.roll(5) == 0) one = {"objectClass", dice.some_of(class_names, 2)};
            const auto kind = static_cast<Change>(dice.roll(3));
            if (kind != Change::add && dice.roll(2) == 0) one.values.clear();
            changes.push_back({one.name, one.values, kind});
        }
        const Said said = change(name, changes);
        EntryData changed = held;
        const Refusal refusal = apply_changes(Schema::of_product(), changed, changes);
        ASSERT_EQ((Said{refusal.code, refusal.message}), said)
            << text_of(changes) << " of " << text_of(held.attributes) << " (seed " << seed
            << ", change " << count << ")";
        if (said.code != 0) continue;
        ++taken;
        held = std::move(changed);
        for (const Attribute& one : held.attributes)
            ASSERT_EQ(root.values(name, one.name), one.values) << text_of(changes) << one.name;
    }
    EXPECT_GT(taken, 100);
    root.remove(name);
}

}  // namespace
}  // namespace orvo::directory
