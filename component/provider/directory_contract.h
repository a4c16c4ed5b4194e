#pragma once

// The directory provider's contract, as the component sees it.
//
// A provider is a component of its own, named by its ProgID in the settings. Its module object
// makes the other three; identifiers and slot numbers are the provider's binary interface and are
// pinned by test. All text arguments are in-out because the interface passes them by reference; a
// provider leaves them as they are.
//
// Threads: an object is used by the thread that made it; a provider serves several threads at once.
// Ownership: arguments stay the caller's, results are the caller's to release.
// Lifetimes: an object is held by its caller while a method of it runs, whatever becomes of the
// variable that it was called through. The module is held until the method that needed it has
// ended: a search or a check, which goes with that method, may rely on it. Entries and record sets
// may stay in use after nobody else holds the module; one that needs it holds it itself.
//
// Values: an attribute's values are an array of variants with lower bound 0. An attribute that the
// entry lacks is an array with one empty element.
//
// Failures that callers tell apart (number, begin of the description):
//   0x8004044F  "(68) The specified entry already exists."
//   0x80072030  no such entry
//   0x8007052E  wrong credentials
//   0x8007203A  server unreachable
//   0x80072098  insufficient rights

#include "platform/interfaces/interface.h"
#include "platform/values/boolean.h"
#include "platform/values/secret.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"

namespace orvo {

// One entry or one container of the directory.
class DirectoryEntry {
public:
    // Binds this object to the entry `common_name` ("cn=jsmith"; empty for the container itself)
    // below `container`, with the rights of `user`. `attributes` (array of names) may be fetched
    // at once; what a provider has not fetched here, which may be all of the entry, costs a round
    // trip for each reading.
    virtual void Bind(Text& server, Text& container, Text& common_name, Text& user,
                      Secret& password, Variant& attributes) = 0;
    // All values of one attribute.
    virtual Variant GetValues(Text& name) = 0;
    // Replaces all values of one attribute, at once. `value` is an array or a single value.
    virtual void SetValues(Text& name, Variant& value) = 0;
    // Removes the attribute; an attribute that the entry lacks is no failure.
    virtual void ClearValues(Text& name) = 0;
    // Creates an entry below this one. `classes`: array with the object class (or list of them);
    // `attributes`: a dictionary of attribute name to value, "objectClass" among them.
    virtual void CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) = 0;
    // Deletes the entry whose full name is `entry_name`.
    virtual void DeleteChild(Text& class_name, Text& entry_name) = 0;
    virtual Boolean InitializeConnectionPool(Variant& names, Variant& values) = 0;
    virtual Boolean InitializeCache(Variant& names, Variant& values) = 0;

protected:
    ~DirectoryEntry() = default;
};

// A search below one container.
class DirectorySearch {
public:
    virtual void Connect(Text& server, Text& container, Text& user, Secret& password) = 0;
    // At most `maximum` entries, as a record set whose columns are `attributes`, in that order.
    virtual Object Execute(Text& filter, Variant& attributes, std::int32_t maximum) = 0;

protected:
    ~DirectorySearch() = default;
};

// A check of credentials.
class DirectoryValidator {
public:
    virtual void Open(Text& server, Text& user_container) = 0;
    // `path`: the user's full distinguished name. 0: right; -1: wrong user or password; -2: account
    // locked; -3: account disabled; -4: right, but expired or to be changed; -5: too many failures
    // for now. A server that does not answer is a failure, never a negative result.
    virtual std::int32_t Validate(Variant& path, Variant& password) = 0;

protected:
    ~DirectoryValidator() = default;
};

// The directory's schema. No operation of it is used by the component.
class DirectorySchema {
protected:
    ~DirectorySchema() = default;
};

// The object that a provider's ProgID creates.
class DirectoryModule {
public:
    virtual Ref<DirectorySchema> CreateSchema() = 0;
    virtual Ref<DirectoryEntry> CreateEntry() = 0;
    virtual Ref<DirectoryValidator> CreateValidator() = 0;
    virtual Ref<DirectorySearch> CreateSearch() = 0;

protected:
    ~DirectoryModule() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<DirectorySchema> =
    describe<DirectorySchema>("IDirectorySchema", "5f118a9f-b82b-486d-a990-e84624c818c1",
                              about("The schema; callers hold it and ask it nothing."));

template <>
inline constexpr auto table_of<DirectoryEntry> = describe<DirectoryEntry>(
    "IDirectoryEntry", "33cc820f-121f-4221-b48e-57ebb11c6955",
    about("One entry of the directory."),
    reserved(1),
    method<&DirectoryEntry::Bind>("Bind", "server", "container", "commonName", "user", "password",
                                  "attributes")
        .help("Binds to an entry, or with no common name to the container."),
    reserved(3),
    method<&DirectoryEntry::GetValues>("GetValues", "name")
        .help("All values of an attribute, as an array."),
    method<&DirectoryEntry::SetValues>("SetValues", "name", "value")
        .help("Replaces all values of an attribute."),
    method<&DirectoryEntry::ClearValues>("ClearValues", "name").help("Removes an attribute."),
    reserved(7),
    method<&DirectoryEntry::CreateChild>("CreateChild", "classes", "namingAttribute", "attributes")
        .help("Creates an entry below this one."),
    method<&DirectoryEntry::DeleteChild>("DeleteChild", "className", "entryName")
        .help("Deletes the entry with this full name."),
    reserved(10),
    method<&DirectoryEntry::InitializeConnectionPool>("InitializeConnectionPool", "names", "values")
        .help("Sets the connection pool up."),
    method<&DirectoryEntry::InitializeCache>("InitializeCache", "names", "values")
        .help("Sets the cache up."));

template <>
inline constexpr auto table_of<DirectorySearch> = describe<DirectorySearch>(
    "IDirectorySearch", "3f8f6be4-f403-45be-90a5-e0243c013656",
    about("A search below a container."),
    reserved(1),
    method<&DirectorySearch::Connect>("Connect", "server", "container", "user", "password")
        .help("Prepares searching below a container."),
    method<&DirectorySearch::Execute>("Execute", "filter", "attributes", "maximum")
        .help("Runs a filter: a record set of at most so many entries."));

template <>
inline constexpr auto table_of<DirectoryValidator> = describe<DirectoryValidator>(
    "IDirectoryValidator", "356cfaf8-0d94-40af-b406-e521ee561f56",
    about("Checks passwords."),
    reserved(1),
    method<&DirectoryValidator::Open>("Open", "server", "userContainer")
        .help("Prepares checking the users of a container."),
    reserved(3),
    method<&DirectoryValidator::Validate>("Validate", "path", "password")
        .help("Checks a password: 0 is right, a negative number is not."));

template <>
inline constexpr auto table_of<DirectoryModule> = describe<DirectoryModule>(
    "IDirectoryModule", "ccf6fd6b-5048-43ca-a45f-c12b3584ab82",
    about("Makes the objects of a directory provider."),
    reserved(1),
    method<&DirectoryModule::CreateSchema>("CreateSchema")
        .help("A new object for the directory's schema."),
    method<&DirectoryModule::CreateEntry>("CreateEntry")
        .help("A new object for an entry, not yet bound."),
    method<&DirectoryModule::CreateValidator>("CreateValidator")
        .help("A new object that checks passwords."),
    method<&DirectoryModule::CreateSearch>("CreateSearch").help("A new search."));
// clang-format on

}  // namespace orvo
