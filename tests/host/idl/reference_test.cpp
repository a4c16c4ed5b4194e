#include <gmock/gmock.h>

#include <regex>
#include <set>

#include "component/common/OrvoMemErrors.h"
#include "component/server/class_list.h"
#include "host/idl/described_member.h"
#include "host/idl/member_failures.h"
#include "host/idl/reference_pages.h"
#include "host/idl/suite_classes.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

const fs::path source = ORVO_SOURCE;

TEST(Reference, TheCommittedPagesAreThoseThatTheTablesGive) {
    std::set<std::string> made{"settings.md"};
    for (const ReferencePage& page : reference_pages(source / "examples" / "reference")) {
        made.insert(page.file);
        EXPECT_EQ(content_of(source / "docs" / "reference" / page.file), page.text)
            << "refresh it:\n    " << ORVO_REFRESH << " --reference " << ORVO_SOURCE;
    }
    for (const auto& entry : fs::directory_iterator(source / "docs" / "reference"))
        EXPECT_TRUE(made.contains(entry.path().filename())) << entry.path() << " is of no class";
}

TEST(Reference, EveryMemberHasASentence) {
    const auto check = []<class I>(std::type_identity<I>) {
        EXPECT_TRUE(std::string_view(table_of<I>.about).ends_with('.')) << table_of<I>.name;
        for (const DescribedMember& member : described_members<I>())
            EXPECT_TRUE(std::regex_match(member.help, std::regex("[A-Z].*\\.")))
                << table_of<I>.name << "." << member.name << ": " << member.help;
    };
    const auto check_classes = [&]<class... C>(std::type_identity<std::tuple<C...>>) {
        (check(std::type_identity<typename detail::description_of<C>::first>{}), ...);
    };
    check_classes(std::type_identity<PublicClasses>{});
    check_classes(std::type_identity<SuiteClasses>{});
    [&]<class... I>(std::type_identity<std::tuple<I...>>) {
        (check(std::type_identity<I>{}), ...);
    }(std::type_identity<ForeignInterfaces>{});
}

TEST(Reference, EveryNumberHasASentence) {
    for (const MemError& error : mem_errors)
        EXPECT_TRUE(std::regex_match(error.text, std::regex("[A-Z].*\\."))) << error.name;
    for (const MemberFailure& failure : member_failures())
        EXPECT_TRUE(std::regex_match(number_text(failure.number), std::regex("[A-Z].*\\.")))
            << failure.interface_name << "." << failure.member << ": " << failure.number;
}

TEST(Reference, AClassWithoutItsExampleIsNotWritten) {
    EXPECT_THROW(reference_pages(source / "docs"), std::runtime_error);
}

}  // namespace
}  // namespace orvo
