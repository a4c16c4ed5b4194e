// An object of one's own: a class, the table of its interface, and the module that offers it.

#include "platform/module/module.h"

using namespace orvo;

class Greeter {
public:
    Text Greet(const Text& name) {
        ++greetings_;
        return word_ + u", " + name + u"!";
    }
    std::int32_t Greetings() { return greetings_; }
    void put_Word(const Text& word) { word_ = word; }

private:
    Text word_ = u"Hello";
    std::int32_t greetings_ = 0;
};

// clang-format off
template <>
inline constexpr auto orvo::table_of<Greeter> = describe<Greeter>(
    "IGreeter", "c0a9c3c4-6d5b-4d0e-8f5e-2a7e4e1f9b01",
    method<&Greeter::Greet>("Greet", optional("name")),
    get<&Greeter::Greetings>("Greetings"),
    put<&Greeter::put_Word>("Word", "word"));
// clang-format on

template <>
inline constexpr auto orvo::class_of<Greeter> =
    describe_class<Greeter>("Hello.Greeter", "c0a9c3c4-6d5b-4d0e-8f5e-2a7e4e1f9b02");

const ModuleDescription& orvo::this_module() {
    static constexpr ModuleClass classes[] = {module_class<Greeter>()};
    static constexpr ModuleDescription description{"Hello", classes};
    return description;
}
