#pragma once

#include <gmock/gmock.h>

#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/create.h"
#include "platform/values/values.h"
#include "tests/support/raised.h"
#include "tests/support/recording/doors.h"
#include "tests/support/recording/fresh_thread.h"
#include "tests/support/recording/recording_configuration.h"
#include "tests/support/recording/recording_context.h"
#include "tests/support/recording/recording_directory.h"
#include "tests/support/recording/recording_log.h"

namespace orvo {

inline constexpr const char* not_set = "Object variable or With block variable not set";
inline constexpr const char* type_mismatch = "Type mismatch";

// What the provider refuses with, where a test only asks how a refusal travels.
inline Failure no_rights() { return {error_number(0x80072098), u"Its.Own", u"(50) no rights"}; }

// What a creation says of a class that nobody knows: the standard text, the name, and where it was
// looked for.
inline std::string cannot_create(const Text& progid) {
    const std::string text = to_utf8(raised_by([&] { create_object(progid); }).description);
    EXPECT_THAT(text,
                testing::StartsWith("ActiveX component can't create object: The component \"" +
                                    to_utf8(progid) + "\" is not known in /"));
    return text;
}

// An array of 32-bit integers, as a directory answers numbers.
inline Values numbers(std::initializer_list<int> elements) {
    Values values(0, 0);
    for (const int number : elements) values.push_back(std::int32_t{number});
    return values;
}

// The block into which HandleError puts a description, without a line of information.
inline std::string block(const std::string& number, const std::string& method,
                         const std::string& description) {
    return "\r\nERROR 0x" + number + "\r\n METHOD: " + method + "\r\n DESC: " + description +
           ".\r\n";
}
// The same with a line of information.
inline std::string block(const std::string& number, const std::string& method,
                         const std::string& description, const std::string& info) {
    return block(number, method, description) + " INFO: " + info + ".\r\n";
}

// The component among recording neighbours: a log, a configuration with the settings of a shop
// whose values all differ, and a directory.
class ComponentTest : public testing::Test {
protected:
    using Section = RecordingConfiguration::Section;

    ComponentTest() { membership() = shop(); }

    static Section shop() {
        return {
            {u"LDAPServer", u"dir01:389"},
            {u"UserContainer", u"ou=Users"},
            {u"ProfileContainer", u"ou=Profiles"},
            {u"AccountContainer", u"ou=Accounts"},
            {u"UserClass", u"top,person"},
            {u"ProfileClass", u"shopProfile"},
            {u"AccountClass", u"shopAccount"},
            {u"ProfileNamingAttribute", u"pn"},
            {u"UserNamingAttribute", u"un"},
            {u"AccountNamingAttribute", u"an"},
            {u"UserMandatoryAttributes", u"sn,mail"},
            {u"MemScriptUser", u"cn=script"},
            {u"MemScriptCode", u"script-code"},
            {u"CookieName", u"ShopLogin"},
            {u"LDAPRoot", u"o=Shop"},
            {u"ConfigFileName", u"directory.ini"},
            {u"PlugableModuleImplementation", u"Test.Directory"},
        };
    }

    // The thread's settings, as the site has them.
    void load_settings() {
        load_site_configuration();
        forget();
    }
    // What was noted so far counts no more.
    void forget() {
        journal_.clear();
        log_.take();
    }

    // Each door to a new object of class C. `prepare` is run with the object first; what is noted
    // before `body` is forgotten.
    template <class C, class Body, class... Prepare>
    void through_doors_to(Body body, Prepare... prepare) {
        for (const Door door : every_door) {
            SCOPED_TRACE(testing::PrintToString(door));
            Behind<C> object(door);
            (prepare(object), ...);
            forget();
            body(object);
        }
    }

    Section& membership() { return configuration_.sections[u"MEMBERSHIP"]; }

    Journal journal_;
    RecordingLog log_;
    RecordingConfiguration configuration_{journal_};
    RecordingDirectory directory_{journal_};
};

}  // namespace orvo
