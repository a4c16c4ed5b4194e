#include "platform/interfaces/idl.h"

#include <cstdio>

namespace orvo {

std::string idl_guid(const abi::GUID& id) { return to_utf8(guid_text(id)); }

std::string idl_help(std::string_view text) {
    return text.empty() ? "" : ", helpstring(\"" + std::string(text) + "\")";
}

void IdlWriter::begin(const char* name, const abi::IID& iid, const char* about, bool dispatch) {
    dispatch_ = dispatch;
    out_ << "    [ object, uuid(" << idl_guid(iid) << ")"
         << (dispatch ? ", dual, oleautomation" : "") << idl_help(about) << " ]\n    interface "
         << name << " : " << (dispatch ? "IDispatch" : "IUnknown") << "\n    {\n";
}

void IdlWriter::end() { out_ << "    };\n"; }

void IdlWriter::hole(std::size_t slot, const RowData& reserved) {
    for (int number = reserved.first_reserved; number <= reserved.last_reserved; ++number) {
        out_ << "        /* " << slot++ << " */ ";
        if (dispatch_)
            out_ << "[id(0x" << std::hex << 0x60010000 + number << std::dec
                 << "), hidden, restricted] ";
        out_ << "HRESULT Reserved" << number << "();\n";
    }
}

std::string IdlWriter::parameter(bool in_out, const Parameter& named, const std::string& type) {
    std::string attributes = in_out ? "[in, out" : "[in";
    if (named.may_be_missing) {
        attributes += ", optional";
        if (type == "BSTR")
            attributes += in_out ? ", defaultvalue(empty_text)" : ", defaultvalue(\"\")";
        if (type == "short" || type == "long")
            attributes += ", defaultvalue(" + std::to_string(named.otherwise) + ")";
    }
    return attributes + "] " + type + (in_out ? "* " : " ") + named.name;
}

void IdlWriter::line(std::size_t slot, abi::DISPID id, const RowData& row,
                     const std::vector<std::string>& parameters) {
    out_ << "        /* " << slot << " */ ";
    if (dispatch_) {
        out_ << "[id(" << id << ")";
        if (row.shape == Shape::get) out_ << ", propget";
        if (row.shape == Shape::put) out_ << ", propput";
        if (row.shape == Shape::put_reference) out_ << ", propputref";
        if (row.is_hidden) out_ << ", hidden";
        out_ << idl_help(row.help) << "] ";
    }
    out_ << "HRESULT " << row.name << '(';
    for (std::size_t i = 0; i < parameters.size(); ++i)
        out_ << (i == 0 ? "" : ", ") << parameters[i];
    out_ << ");\n";
}

}  // namespace orvo
