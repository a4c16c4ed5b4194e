#include <algorithm>

#include "component/common/Lib_ErrorHandling.h"
#include "component/config/ServerInfo.h"

namespace orvo {
namespace {

void ReverseArray(std::vector<Text>& array) { std::ranges::reverse(array); }

// Appends a container in the order of a distinguished name, joined with ",". One that is written
// from the top down ("o=Shop/ou=Users") is turned round; nothing is trimmed or escaped.
Text& append_joined(Text& text, TextView container) {
    if (container.find(u'/') == TextView::npos) return text.append(container);
    std::vector<Text> parts = split(container, u"/");
    ReverseArray(parts);
    for (const Text& part : parts) {
        if (&part != &parts.front()) text += u',';
        text += part;
    }
    return text;
}

}  // namespace

Text ServerInfo::makeLDAPString(Text& iHost, Text& iContainer, Text& iObject) {
    return trapped(u"OrvoMembership.ServerInfo.makeLDAPString", [&] {
        CheckState();
        if (const auto scheme = iHost.find(u"//"); scheme != Text::npos) iHost.erase(0, scheme + 2);
        if (!iHost.empty() && iHost.back() == u'/') iHost.pop_back();
        // For profiles and accounts, too: a container does not tell what its entries are.
        if (!iObject.empty() && iObject.find(u'=') == Text::npos)
            iObject = user_naming_attribute() + u"=" + iObject;
        Text path = u"LDAP://" + iHost + u"/" + (iObject.empty() ? u"" : iObject + u",");
        return append_joined(path, iContainer);
    });
}

Text ServerInfo::FullUserPath(Text& iUser) {
    return trapped(u"OrvoMembership.ServerInfo.FullUserPath", [&] {
        CheckState();
        Text path;
        path.reserve(user_naming_attribute().size() + iUser.size() + user_container().size() + 2);
        if (!iUser.empty()) {
            if (iUser.find(u'=') == Text::npos) path.append(user_naming_attribute()) += u'=';
            // Without a root the container is empty and the path ends in ",", which no directory
            // takes for a name: the bare "cn=jsmith" would be one.
            path.append(iUser) += u',';
        }
        return append_joined(path, user_container());
    });
}

}  // namespace orvo
