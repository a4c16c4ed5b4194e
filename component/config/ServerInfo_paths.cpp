#include <algorithm>

#include "component/common/Lib_ErrorHandling.h"
#include "component/config/ServerInfo.h"

namespace orvo {
namespace {

void ReverseArray(std::vector<Text>& array) { std::reverse(array.begin(), array.end()); }

// A container in the order of a distinguished name, joined with ",". One that is written from the
// top down ("o=Shop/ou=Users") is turned round; nothing is trimmed or escaped.
Text joined_parts(const Text& container) {
    if (container.find(u'/') == Text::npos) return container;
    std::vector<Text> parts = split(container, u"/");
    ReverseArray(parts);
    Text joined;
    for (const Text& part : parts) {
        if (&part != &parts.front()) joined += u',';
        joined += part;
    }
    return joined;
}

}  // namespace

Text ServerInfo::makeLDAPString(Text& iHost, Text& iContainer, Text& iObject) {
    return trapped(u"OrvoMembership.ServerInfo.makeLDAPString", [&] {
        CheckState();
        if (const auto scheme = iHost.find(u"//"); scheme != Text::npos) iHost.erase(0, scheme + 2);
        if (!iHost.empty() && iHost.back() == u'/') iHost.pop_back();
        const Text container = joined_parts(iContainer);
        // The user naming attribute, for profiles and accounts too. Deliberate.
        if (!iObject.empty() && iObject.find(u'=') == Text::npos)
            iObject = GetUserNamingAttribute().to<Text>() + u"=" + iObject;
        return u"LDAP://" + iHost + u"/" + (iObject.empty() ? u"" : iObject + u",") + container;
    });
}

Text ServerInfo::FullUserPath(Text& iUser) {
    return trapped(u"OrvoMembership.ServerInfo.FullUserPath", [&] {
        CheckState();
        const Text container = joined_parts(GetUserContainer().to<Text>());
        if (iUser.empty()) return container;
        const bool is_bare = iUser.find(u'=') == Text::npos;
        // Without a root the container is empty and the path ends in ",". Deliberate.
        return (is_bare ? GetUserNamingAttribute().to<Text>() + u"=" + iUser : iUser) + u"," +
               container;
    });
}

}  // namespace orvo
