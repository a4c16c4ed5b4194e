#include "host/web/intrinsics/session_object.h"

#include "host/web/messages/random_token.h"
#include "platform/interfaces/enumerator.h"
#include "platform/values/failure.h"

namespace orvo::web {

// What the dictionaries of the session and of the application have in common.
template <class Store>
class ContentsObject final : public VariantDictionary {
public:
    explicit ContentsObject(std::shared_ptr<PageContext> page) : store_(std::move(page)) {}

    Variant Item(const Variant& name) override { return store_.get(name_of(name)); }
    void put_Item(const Variant& name, const Variant& value) override {
        store_.put(name_of(name), value);
    }
    void set_Item(const Variant& name, const Variant& value) override {
        store_.set(name_of(name), value);
    }
    Variant Key(const Variant& index) override { return name_of(index); }
    std::int32_t Count() override { return static_cast<std::int32_t>(store_.all().count()); }
    Object NewEnum() override {
        const std::vector<Text> names = store_.all().names();
        return make_enumerator({names.begin(), names.end()});
    }
    void Remove(const Variant& name) override { store_.remove(name_of(name)); }
    void RemoveAll() override { store_.remove_all(); }

private:
    // A name, or a number from 1.
    Text name_of(const Variant& key) const {
        if (key.is_text() || key.is_object()) return key.to<Text>();
        const auto number = key.to<std::int32_t>();
        const NamedValues all = store_.all();
        if (number < 1 || static_cast<std::size_t>(number) > all.count())
            raise_runtime_error(runtime_error::subscript_out_of_range);
        return all.name_at(static_cast<std::size_t>(number - 1));
    }

    Store store_;
};

struct SessionValues {
    explicit SessionValues(std::shared_ptr<PageContext> page) : page(std::move(page)) {}
    Variant get(const Text& name) const {
        page->require_session();
        return page->session() ? page->session()->data().values.get(name) : Variant();
    }
    void put(const Text& name, const Variant& value) {
        set(name, keepable(value, u"Session", name, page->session_reach()));
    }
    void set(const Text& name, const Variant& value) {
        require_keepable(value, u"Session", name, page->session_reach());
        page->require_session();
        NamedValues& values = page->keep([&]() -> NamedValues& {
            page->note_session_value(name);
            return page->need_session().data().values;
        });
        const Variant before = values.get(name);
        values.put(name, value);
        if (values.size() <= largest_session) return;
        values.put(name, before);
        throw Failure(runtime_error::out_of_memory, {}, u"A session keeps at most one megabyte");
    }
    NamedValues all() const {
        page->require_session();
        return page->session() ? page->session()->data().values : NamedValues();
    }
    void remove(const Text& name) {
        if (SessionLease* session = known_session()) session->data().values.remove(name);
    }
    void remove_all() {
        if (SessionLease* session = known_session()) session->data().values.remove_all();
    }
    SessionLease* known_session() const {
        return page->keep([&] { return page->known_session(); });
    }
    std::shared_ptr<PageContext> page;
};

struct ApplicationValues {
    explicit ApplicationValues(std::shared_ptr<PageContext> page) : page(std::move(page)) {}
    Variant get(const Text& name) const {
        return page->keep([&] { return page->application.get(name); });
    }
    void put(const Text& name, const Variant& value) {
        page->keep([&] { page->application.put(name, value); });
    }
    void set(const Text& name, const Variant& value) {
        page->keep([&] { page->application.set(name, value); });
    }
    NamedValues all() const {
        return page->keep([&] { return page->application.snapshot(); });
    }
    void remove(const Text& name) {
        page->keep([&] { page->application.remove(name); });
    }
    void remove_all() {
        page->keep([&] { page->application.remove_all(); });
    }
    std::shared_ptr<PageContext> page;
};

// What <object runat="server"> would make, which there is none of here.
struct NoValues {
    explicit NoValues(const std::shared_ptr<PageContext>&) {}
    Variant get(const Text&) const { return {}; }
    void put(const Text& name, const Variant&) { set(name, {}); }
    void set(const Text&, const Variant&) {
        throw Failure(runtime_error::invalid_call, {}, u"StaticObjects cannot be changed");
    }
    NamedValues all() const { return {}; }
    void remove(const Text&) {}
    void remove_all() {}
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::ContentsObject<web::SessionValues>> =
    describe_class<web::VariantDictionary>("Session.Contents");
template <>
inline constexpr auto class_of<web::ContentsObject<web::ApplicationValues>> =
    describe_class<web::VariantDictionary>("Application.Contents");
template <>
inline constexpr auto class_of<web::ContentsObject<web::NoValues>> =
    describe_class<web::VariantDictionary>("StaticObjects");
}  // namespace orvo

namespace orvo::web {

Variant SessionObject::Value(const Text& name) { return SessionValues(page_).get(name); }

void SessionObject::put_Value(const Text& name, const Variant& value) {
    SessionValues(page_).put(name, value);
}

void SessionObject::set_Value(const Text& name, const Variant& value) {
    SessionValues(page_).set(name, value);
}

std::int32_t SessionObject::Timeout() {
    return static_cast<std::int32_t>(page_->session_timeout().count());
}

void SessionObject::put_Timeout(std::int32_t minutes) {
    if (minutes < 1 || minutes > 1440)
        throw Failure(runtime_error::invalid_call, {},
                      u"Timeout is 1 to 1440 minutes, not " + decimal(minutes));
    data().timeout = std::chrono::minutes(minutes);
}

void SessionObject::Abandon() {
    page_->keep([&] { page_->abandon_session(); });
}

Object SessionObject::StaticObjects() { return make<ContentsObject<NoValues>>(page_).object(); }

Object SessionObject::Contents() { return make<ContentsObject<SessionValues>>(page_).object(); }

bool SessionObject::IsFormToken(const Text& token) {
    return page_->session() && equal_secretly(page_->session()->data().form_token, to_utf8(token));
}

SessionData& SessionObject::data() {
    return page_->keep([&]() -> SessionData& { return page_->need_session().data(); });
}

Variant ApplicationObject::Value(const Text& name) { return ApplicationValues(page_).get(name); }

void ApplicationObject::put_Value(const Text& name, const Variant& value) {
    ApplicationValues(page_).put(name, value);
}

void ApplicationObject::set_Value(const Text& name, const Variant& value) {
    ApplicationValues(page_).set(name, value);
}

void ApplicationObject::Lock() {
    page_->keep([&] { page_->application.lock(); });
}

Object ApplicationObject::StaticObjects() { return make<ContentsObject<NoValues>>(page_).object(); }

Object ApplicationObject::Contents() {
    return make<ContentsObject<ApplicationValues>>(page_).object();
}

}  // namespace orvo::web
