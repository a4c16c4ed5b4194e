#pragma once

// The description of interfaces as IDL text, read from their tables. One writer is used by one
// thread; nothing fails but for want of memory.

#include <sstream>

#include "platform/interfaces/hosted.h"

namespace orvo {

// Writes interfaces one by one. Members stand in slot order with the numbers that late binding
// uses. The default of an optional text by reference is written as `empty_text`, which the text is
// to begin with:
inline constexpr const char* idl_empty_text =
    "// What widl takes for an empty text where the parameter is one by reference.\n"
    "#ifdef __WIDL__\n"
    "#define empty_text 0\n"
    "#else\n"
    "#define empty_text \"\"\n"
    "#endif\n\n";

class IdlWriter {
public:
    // What stands before all interfaces; `text` is written as it is.
    void raw(std::string_view text) { out_ << text; }

    // One interface, every member behind its slot number (a comment to IDL). Reserved slots are
    // written as hidden members so that the slots behind them keep their places.
    template <class I>
    void write_interface() {
        const auto& table = table_of<I>;
        begin(table.name, table.iid, table.about, table.dispatch);
        const detail::InterfaceInfo& info = detail::callee<I>::info();
        std::size_t late = 0;
        table.for_each([&]<auto M>(std::size_t index) {
            if constexpr (std::is_null_pointer_v<std::remove_cv_t<decltype(M)>>)
                hole(table.slots[index], table.rows[index]);
            else
                member<M>(table.slots[index], table.dispatch ? info.members[late++].id : 0,
                          table.rows[index]);
        });
        end();
    }

    std::string text() const { return out_.str(); }

private:
    void begin(const char* name, const abi::IID& iid, const char* about, bool dispatch);
    void end();
    void hole(std::size_t slot, const RowData& reserved);

    template <auto M>
    void member(std::size_t slot, abi::DISPID id, const RowData& row) {
        using S = detail::signature_of<M>;
        std::vector<std::string> parameters;
        std::size_t index = 0;
        auto add = [&]<class P>(std::type_identity<P>) {
            const Parameter& named = row.parameters[index++];
            parameters.push_back(
                parameter(detail::is_in_out<P>, named, crossing<detail::natural<P>>::idl()));
        };
        [&]<class... P>(std::type_identity<std::tuple<P...>>) {
            (add(std::type_identity<P>{}), ...);
        }(std::type_identity<typename S::parameters>{});
        if constexpr (!std::is_void_v<typename S::result>)
            if (row.shape != Shape::bare)
                parameters.push_back("[out, retval] " +
                                     crossing<detail::natural<typename S::result>>::idl() +
                                     "* result");
        line(slot, id, row, parameters);
    }

    static std::string parameter(bool in_out, const Parameter& named, const std::string& type);
    void line(std::size_t slot, abi::DISPID id, const RowData& row,
              const std::vector<std::string>& parameters);

    std::ostringstream out_;
    bool dispatch_ = true;
};

// A help string among IDL's attributes, "helpstring(\"…\")" behind a comma; nothing for no text.
std::string idl_help(std::string_view text);

// "33CC820F-121F-4221-B48E-57EBB11C6955" as IDL's attributes take it.
std::string idl_guid(const abi::GUID& id);

}  // namespace orvo
