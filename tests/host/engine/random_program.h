#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace orvo::script {

// Makes programs of the language at random: the same seed makes the same program. They end by
// themselves and print what they compute with `print(text)`.
class RandomProgram {
public:
    explicit RandomProgram(std::uint32_t seed) : random_(seed) {}

    std::string make();

private:
    unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
    bool once_in(unsigned times) { return below(times) == 0; }
    template <std::size_t count>
    const char* one_of(const char* const (&all)[count]) {
        return all[below(count)];
    }

    std::string gap();
    std::string end();
    std::string variable();
    std::string literal();
    std::string pattern();
    std::string object(int depth);
    std::string function(int depth, const std::string& name);
    std::string value(int depth);
    std::string call(int depth);
    std::string evaluation(int depth);
    std::string loop(int depth);
    std::string statement(int depth);
    std::string statements(int depth);
    std::string block(int depth);

    std::mt19937 random_;
    int loops_ = 0;      // around this place, in the same function
    int functions_ = 0;  // around this place
    int names_ = 0;      // given to functions and labels
};

}  // namespace orvo::script
