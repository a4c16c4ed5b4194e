#include "component/server/library_idl.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

std::string without_help(const std::string& idl) {
    return std::regex_replace(idl, std::regex("\"[^\"\\n]*\"|//[^\\n]*|    interface \\w+;"), "");
}

std::string lowered(std::string name) {
    std::ranges::transform(name, name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

TEST(ComponentIdl, TheCommittedTextIsTheOneThatTheTablesGive) {
    EXPECT_EQ(content_of(ORVO_COMMITTED_IDL), component_idl())
        << "refresh it:\n    " << ORVO_REFRESH << " > " << ORVO_COMMITTED_IDL;
}

TEST(ProviderIdl, TheCommittedTextIsTheOneThatTheTablesGive) {
    EXPECT_EQ(content_of(ORVO_COMMITTED_INTERFACES), provider_idl())
        << "refresh it:\n    " << ORVO_REFRESH << " --interfaces > " << ORVO_COMMITTED_INTERFACES;
}

// A type library keeps the spelling that it meets first, without regard to case.
TEST(EitherIdl, SpellsNoNameOtherwiseBeforeItIsDefined) {
    const std::regex definition("(?:interface|coclass|HRESULT|enum) (\\w+)");
    const std::regex word("\\w+");
    for (const std::string& idl : {without_help(component_idl()), without_help(provider_idl())}) {
        std::map<std::string, std::string> first;
        for (std::sregex_iterator at(idl.begin(), idl.end(), word), end; at != end; ++at)
            first.emplace(lowered(at->str()), at->str());
        for (std::sregex_iterator at(idl.begin(), idl.end(), definition), end; at != end; ++at)
            EXPECT_EQ(first.at(lowered(at->str(1))), at->str(1));
    }
}

TEST(EitherIdl, HasAHelpStringForEveryMember) {
    const std::regex member("HRESULT \\w+\\(");
    const std::regex told(
        "helpstring\\(\"[A-Z][^\"]*\\.\"\\)\\] HRESULT|hidden, restricted\\] HRESULT");
    for (const std::string& idl : {component_idl(), provider_idl()}) {
        std::istringstream lines(idl);
        for (std::string line; std::getline(lines, line);)
            EXPECT_TRUE(!std::regex_search(line, member) || std::regex_search(line, told)) << line;
    }
}

TEST(EitherIdl, HasAHelpStringForEveryInterfaceAndEnumeration) {
    const std::regex told("helpstring\\(\"[A-Z][^\"]*\\.\"\\)");
    for (const std::string& idl : {component_idl(), provider_idl()}) {
        std::istringstream lines(idl);
        for (std::string line; std::getline(lines, line);) {
            const bool describes =
                line.starts_with("    [ object") || line.starts_with("    typedef");
            EXPECT_TRUE(!describes || std::regex_search(line, told)) << line;
        }
    }
}

// What is somebody else's is in a library of its own, and there alone.
TEST(EitherIdl, DescribesAnInterfaceInOneLibraryOnly) {
    const auto interfaces_of = [](const std::string& idl) {
        const std::regex described("interface (\\w+) :");
        std::set<std::string> names;
        for (std::sregex_iterator at(idl.begin(), idl.end(), described), end; at != end; ++at)
            names.insert(at->str(1));
        return names;
    };
    const std::set<std::string> own = interfaces_of(component_idl());
    EXPECT_THAT(interfaces_of(provider_idl()),
                testing::ElementsAre("IDirectoryEntry", "IDirectoryModule", "IDirectorySchema",
                                     "IDirectorySearch", "IDirectoryValidator",
                                     "IQuendraConfiguration", "IQuendraLog"));
    for (const std::string& name : interfaces_of(provider_idl()))
        EXPECT_FALSE(own.contains(name)) << name;
    EXPECT_EQ(component_idl().find("struct"), std::string::npos);
}

}  // namespace
}  // namespace orvo
