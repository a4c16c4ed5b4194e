// The binary interfaces that others rely on: identifiers and slots, counted from 0 with the seven
// of the dispatch interface in front, so that an interface's own first operation has slot 7.

#include "component/provider/directory_contract.h"

#include <gtest/gtest.h>

#include "component/auth/Validator.h"
#include "component/common/log_contract.h"
#include "component/config/Account.h"
#include "component/config/PMMCreator.h"
#include "component/config/ServerInfo.h"
#include "component/config/configuration_contract.h"
#include "component/entries/LdapAccess.h"

namespace orvo {
namespace {

// The slot of an interface's own nth operation.
constexpr std::size_t own(std::size_t nth) { return 6 + nth; }

static_assert(slot_of<&DirectoryModule::CreateSchema> == own(2));
static_assert(slot_of<&DirectoryModule::CreateEntry> == own(3));
static_assert(slot_of<&DirectoryModule::CreateValidator> == own(4));
static_assert(slot_of<&DirectoryModule::CreateSearch> == own(5));
static_assert(table_of<DirectoryModule>.slot_count == own(5) + 1);

static_assert(slot_of<&DirectoryEntry::Bind> == own(2));
static_assert(slot_of<&DirectoryEntry::GetValues> == own(4));
static_assert(slot_of<&DirectoryEntry::SetValues> == own(5));
static_assert(slot_of<&DirectoryEntry::ClearValues> == own(6));
static_assert(slot_of<&DirectoryEntry::CreateChild> == own(8));
static_assert(slot_of<&DirectoryEntry::DeleteChild> == own(9));
static_assert(slot_of<&DirectoryEntry::InitializeConnectionPool> == own(11));
static_assert(slot_of<&DirectoryEntry::InitializeCache> == own(12));
static_assert(table_of<DirectoryEntry>.slot_count == own(12) + 1);

static_assert(slot_of<&DirectorySearch::Connect> == own(2));
static_assert(slot_of<&DirectorySearch::Execute> == own(3));

static_assert(slot_of<&DirectoryValidator::Open> == own(2));
static_assert(slot_of<&DirectoryValidator::Validate> == own(4));

static_assert(slot_of<&Log::LogMessage> == own(5));
static_assert(slot_of<&Log::LogMessageAlternate> == own(6));

static_assert(slot_of<&Configuration::LoadSiteConfigurationFile> == own(4));
static_assert(slot_of<&SiteConfigurationLoader::LoadSiteConfigurationFile> == own(4));
static_assert(slot_of<&Configuration::LoadConfigurationFile> == own(5));
static_assert(slot_of<&Configuration::ReadConfigValue> == own(7));
static_assert(slot_of<&Configuration::Initialize> == own(22));

static_assert(slot_of<&ServerInfo::GetMemScriptUser> == 7);
static_assert(slot_of<&ServerInfo::GetMemScriptCode> == 8);
static_assert(slot_of<&ServerInfo::GetServerName> == 9);
static_assert(slot_of<&ServerInfo::GetPMMImplementation> == 10);
static_assert(slot_of<&ServerInfo::GetProfileContainer> == 11);
static_assert(slot_of<&ServerInfo::GetUserContainer> == 12);
static_assert(slot_of<&ServerInfo::GetAccountContainer> == 13);
static_assert(slot_of<&ServerInfo::GetCookieName> == 14);
static_assert(slot_of<&ServerInfo::GetProfileClass> == 15);
static_assert(slot_of<&ServerInfo::GetUserClass> == 16);
static_assert(slot_of<&ServerInfo::GetAccountClass> == 17);
static_assert(slot_of<&ServerInfo::GetUserNamingAttribute> == 18);
static_assert(slot_of<&ServerInfo::GetProfileNamingAttribute> == 19);
static_assert(slot_of<&ServerInfo::GetAccountNamingAttribute> == 20);
static_assert(slot_of<&ServerInfo::GetUserMandatoryAttributes> == 21);
static_assert(slot_of<&ServerInfo::FullUserPath> == 22);
static_assert(slot_of<&ServerInfo::makeLDAPString> == 23);
static_assert(slot_of<&ServerInfo::LoadConfigFile> == 24);
static_assert(slot_of<&ServerInfo::SetConfiguration> == 25);
static_assert(slot_of<&ServerInfo::GetConfigFileName> == 26);

static_assert(slot_of<&PMMCreator::GetPMMSchema> == 7);
static_assert(slot_of<&PMMCreator::GetPMMObject> == 8);
static_assert(slot_of<&PMMCreator::GetPMMSearch> == 9);
static_assert(slot_of<&PMMCreator::GetPMMValidator> == 10);

static_assert(slot_of<&Account::Init> == 7);
static_assert(slot_of<&Account::NTUser> == 8);
static_assert(slot_of<&Account::NTPassword> == 9);

static_assert(slot_of<&LdapAccess::GetAttribValue> == 7);
static_assert(slot_of<&LdapAccess::SetAttribValue> == 8);
static_assert(slot_of<&LdapAccess::ClearAttribValue> == 9);
static_assert(slot_of<&LdapAccess::BindAs> == 10);
static_assert(slot_of<&LdapAccess::BindToConfig> == 11);
static_assert(slot_of<&LdapAccess::GetAttributeName> == 12);

template <class I>
std::string identifier() {
    return to_utf8(guid_text(table_of<I>.iid));
}

TEST(Identifiers, OfTheProvidersInterfacesAreTheirTypeLibrarys) {
    EXPECT_EQ(identifier<DirectoryModule>(), "CCF6FD6B-5048-43CA-A45F-C12B3584AB82");
    EXPECT_EQ(identifier<DirectorySchema>(), "5F118A9F-B82B-486D-A990-E84624C818C1");
    EXPECT_EQ(identifier<DirectoryEntry>(), "33CC820F-121F-4221-B48E-57EBB11C6955");
    EXPECT_EQ(identifier<DirectoryValidator>(), "356CFAF8-0D94-40AF-B406-E521EE561F56");
    EXPECT_EQ(identifier<DirectorySearch>(), "3F8F6BE4-F403-45BE-90A5-E0243C013656");
}

TEST(Identifiers, OfTheSuitesComponentsAreTheirOwn) {
    EXPECT_EQ(identifier<Log>(), "0621D2F8-6009-4F66-A855-2F8D3A15D601");
    EXPECT_EQ(identifier<Configuration>(), "A717E666-A0D2-453A-9357-9DCF856BE20B");
    EXPECT_EQ(identifier<SiteConfigurationLoader>(), identifier<Configuration>());
}

TEST(Identifiers, OfTheComponentsClassesAreThoseThatCallersWereBuiltWith) {
    EXPECT_EQ(identifier<ServerInfo>(), "19041D22-35A4-4296-862C-DD49911E25A9");
    EXPECT_EQ(identifier<PMMCreator>(), "B6C8F471-05D1-4DC5-8502-73BBFC1C5006");
    EXPECT_EQ(identifier<Account>(), "022D2B72-1C79-4081-AE34-7690BE8CB84D");
}

TEST(Identifiers, OfTheClassesAreTheNamesThatCallersCreateThemBy) {
    EXPECT_STREQ(class_of<ServerInfo>.progid, "OrvoMembership.ServerInfo");
    EXPECT_STREQ(class_of<PMMCreator>.progid, "OrvoMembership.PMMCreator");
    EXPECT_STREQ(class_of<Account>.progid, "OrvoMembership.Account");
    EXPECT_STREQ(class_of<LdapAccess>.progid, "OrvoMembership.LdapAccess");
    EXPECT_STREQ(class_of<Validator>.progid, "OrvoMembership.Validator");
}

}  // namespace
}  // namespace orvo
