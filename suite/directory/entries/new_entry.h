#pragma once

// An entry that is to be created, as a caller of the provider describes it.

#include <string>
#include <vector>

#include "platform/values/object.h"
#include "platform/values/secret.h"
#include "platform/values/variant.h"
#include "suite/directory/entries/entry_data.h"
#include "suite/directory/schema/attribute_types.h"
#include "suite/directory/schema/object_classes.h"

namespace orvo::directory {

// An attribute and its value or array of values, untyped as yet. A password may be among them:
// every copy is overwritten when it goes.
struct GivenAttribute {
    ~GivenAttribute() { value.wipe(); }

    std::string name;
    Variant value;
};

// The entries of a dictionary, in its order. Raises 91 for no object, 13 for a key that is no text
// and for an object that is no dictionary, result code 34 for a name that is not whole
// (require_whole).
std::vector<GivenAttribute> given_attributes(const Object& dictionary);

struct NewEntry {
    Text relative_name;  // the naming attribute and its value, escaped
    Text written_name;   // as callers put it together, not escaped
    std::vector<Attribute> attributes;
    // Text attributes that came as an empty text, which no directory stores, and have no value.
    std::vector<std::string> left_empty;
    // Those of them that the object classes require.
    std::vector<std::string> required_empty;
    // Whether a password was given, an empty one, too: somebody is to log in. Other entries are
    // those that users name.
    bool is_login = false;
    Secret password;  // empty: none

    // Values are typed by the schema (encode_values). One attribute under several names or
    // spellings is one attribute, and a value that it is given twice is one value. What comes as an
    // empty text is 0 for an integer and left out for any other type. The object classes are those
    // among the attributes, or where there are none, `classes`: a text or an array, each element of
    // which may be an array again.
    //
    // Raises result code 34 where the naming attribute has no value, several or half of a surrogate
    // pair in it, where these make no relative name, and for a name that its callers could not use
    // afterwards: put together without escaping, as they do (escaped_name), it would be another
    // entry's, "a,ou=b" say; or, of an entry that is no login, in a filter that looks for those who
    // name it, and has the name as it is, it would mean something else, "a*" say.
    NewEntry(const std::vector<GivenAttribute>& given, const Variant& classes,
             const std::string& naming_attribute, const AttributeTypes& types,
             const ObjectClasses& object_classes = {});

    // The entry's name below a container. Raises result code 34 for one that is longer than any
    // name, and of a login for one that its user could not log in with: put together with the
    // container it would be read as another (full_name).
    Text name_below(TextView container) const;

    // Nothing where it is not among the attributes.
    Attribute* find(const std::string& name, const AttributeTypes& types);

private:
    void append(const std::string& name, std::vector<std::string> values,
                const AttributeTypes& types);
    void look_at_empty(const ObjectClasses& object_classes, const AttributeTypes& types);
    void name_by(const std::string& naming_attribute, const AttributeTypes& types);
};

}  // namespace orvo::directory
