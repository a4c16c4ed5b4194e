#include "platform/interfaces/idl.h"

#include <cstdio>

namespace orvo {

std::string idl_guid(const abi::GUID& id) { return to_utf8(guid_text(id)); }

void IdlWriter::begin(const char* name, const abi::IID& iid, bool dispatch) {
    dispatch_ = dispatch;
    out_ << "    [ object, uuid(" << idl_guid(iid) << ")"
         << (dispatch ? ", dual, oleautomation" : "") << " ]\n    interface " << name << " : "
         << (dispatch ? "IDispatch" : "IUnknown") << "\n    {\n";
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

std::string IdlWriter::parameter(bool in_out, bool may_be_missing, const std::string& type,
                                 const char* name) {
    return std::string(in_out ? "[in, out" : "[in") + (may_be_missing ? ", optional] " : "] ") +
           type + (in_out ? "* " : " ") + name;
}

void IdlWriter::line(std::size_t slot, abi::DISPID id, Shape shape, bool hidden, const char* name,
                     const std::vector<std::string>& parameters) {
    out_ << "        /* " << slot << " */ ";
    if (dispatch_) {
        out_ << "[id(" << id << ")";
        if (shape == Shape::get) out_ << ", propget";
        if (shape == Shape::put) out_ << ", propput";
        if (shape == Shape::put_reference) out_ << ", propputref";
        if (hidden) out_ << ", hidden";
        out_ << "] ";
    }
    out_ << "HRESULT " << name << '(';
    for (std::size_t i = 0; i < parameters.size(); ++i)
        out_ << (i == 0 ? "" : ", ") << parameters[i];
    out_ << ");\n";
}

}  // namespace orvo
