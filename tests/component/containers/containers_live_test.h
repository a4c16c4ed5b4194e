#pragma once

// The containers with everything real behind them: the modules that a site registers, and a
// directory of the test's own.

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/values.h"
#include "tests/support/child_process.h"
#include "tests/support/each_directory.h"
#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/recording/fresh_thread.h"
#include "tests/support/slapd_directory.h"
#include "tests/support/temp_folder.h"

namespace orvo {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

inline constexpr auto unreachable = error_number(0x8007203A);

inline std::string property(const Object& object, TextView name) {
    return to_utf8(late::get(object, name).to<Text>());
}

// The values of a record set's column from the current row to the last.
inline std::vector<std::string> column(const Object& record_set, TextView name = u"cn") {
    std::vector<std::string> all;
    for (; !late::get(record_set, u"EOF").to<bool>(); late::call(record_set, u"MoveNext"))
        all.push_back(to_utf8(late::get(record_set, u"Collect", {name}).to<Text>()));
    return all;
}

// An array of texts.
inline Variant list(std::initializer_list<const char16_t*> texts) {
    Values values;
    for (const char16_t* text : texts) values.push_back(text);
    return values;
}

inline std::string block(const char* number, const char* method, const std::string& description) {
    return std::string("\r\nERROR 0x") + number + "\r\n METHOD: OrvoMembership." + method +
           "\r\n DESC: " + description + ".\r\n";
}

// A site with the modules that it registers, and the sample shop in a directory of its own.
class ContainersSite : public testing::Test {
protected:
    explicit ContainersSite(std::unique_ptr<TestDirectory> directory)
        : directory_(std::move(directory)) {
        output_of({ORVO_REGISTER_TOOL, ORVO_MEMBERSHIP, ORVO_SUITE, ORVO_EMBEDDED, ORVO_PLATFORM});
    }

    static Variant service() { return from_utf8(TestDirectory::service_dn()); }
    static Variant service_code() { return from_utf8(TestDirectory::service_password()); }

    // The settings of this thread, which everything made afterwards uses.
    void load_settings() {
        late::call(create_object(u"OrvoMembership.Members"), u"setServerInfo",
                   {from_utf8(shop_.site_ini().string())});
    }
    // A container or an accessor, bound with the service account.
    Object members() { return bound(u"OrvoMembership.Members"); }
    Object profiles() { return bound(u"OrvoMembership.Profiles"); }
    Object user(const Text& cn) {
        load_settings();
        const Object user = create_object(u"OrvoMembership.User");
        late::call(user, u"BindAs", {cn, service(), service_code()});
        return user;
    }
    Object bound(const Text& class_name) {
        load_settings();
        const Object container = create_object(class_name);
        late::call(container, u"BindAs", {service(), service_code()});
        return container;
    }
    static Object create(const Object& members, const Text& name,
                         const Text& password = u"first-sample") {
        return late::call(members, u"CreateUser", {name, password}).to<Object>();
    }
    static Object found(const Object& members, const Variant& criteria) {
        return late::call(members, u"GetOrvoUsers", {criteria}).to<Object>();
    }
    std::string logged() const { return content_of(folder_.path() / "orvo.log"); }

    Text source() const { return from_utf8(shop_.own(differences::source)); }
    std::vector<std::string> stored(const std::string& cn, const char* attribute) {
        return shop_.values(shop_.user_dn(cn), attribute);
    }

private:
    const std::unique_ptr<TestDirectory> directory_;

protected:
    TestDirectory& shop_ = *directory_;

private:
    TempFolder folder_;
    Environment components_{"ORVO_COMPONENTS", folder_.path().string()};
    Environment site_{"ORVO_SITE_CONFIG", shop_.site_ini().string()};
    Environment log_{"ORVO_LOG_FILE", (folder_.path() / "orvo.log").string()};
};

// In front of a directory of each kind (TEST_FRESH_FOR_EACH).
class ContainersLive : public ContainersSite {
protected:
    explicit ContainersLive(const DirectoryOptions& options = {})
        : ContainersSite(directory_kind()->make(options)) {}
};

// What is about directory servers.
class ContainersOverLdap : public ContainersSite {
protected:
    ContainersOverLdap() : ContainersSite(std::make_unique<SlapdDirectory>(DirectoryOptions())) {}

    SlapdDirectory& server_ = static_cast<SlapdDirectory&>(shop_);
};

}  // namespace orvo
