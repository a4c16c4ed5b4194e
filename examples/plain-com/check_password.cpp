// Checks a password as plain COM sources do, on Linux and on Windows:
//
//   check-password SITE.INI USER      the password comes by standard input
//
// Ends with 0 where it is right and with 1 where it is not. What is given is ASCII here.

#define INITGUID
#include <OrvoMembership.h>

#include <cstdio>
#include <iostream>
#include <string>

namespace {

using WideText = std::basic_string<OLECHAR>;

WideText widened(const std::string& text) { return {text.begin(), text.end()}; }

VARIANT text_value(const std::string& text) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(widened(text).c_str());
    return value;
}

// Tells what failed: the result, and the error object's text.
int failed(const char* what, HRESULT code) {
    std::fprintf(stderr, "%s: 0x%08X\n", what, static_cast<unsigned>(code));
    IErrorInfo* info = nullptr;
    if (GetErrorInfo(0, &info) == S_OK) {
        BSTR text = nullptr;
        info->GetDescription(&text);
        for (UINT i = 0; i < SysStringLen(text); ++i)
            std::fputc(text[i] < 0x80 ? static_cast<char>(text[i]) : '?', stderr);
        std::fputc('\n', stderr);
        SysFreeString(text);
        info->Release();
    }
    return 2;
}

int check(IValidator* validator, char** words) {
    const BSTR site = SysAllocString(widened(words[1]).c_str());
    HRESULT code = validator->setServerInfo(site);
    SysFreeString(site);
    if (FAILED(code)) return failed("setServerInfo", code);

    std::string password;
    std::getline(std::cin, password);
    VARIANT user = text_value(words[2]), secret = text_value(password), answer;
    VariantInit(&answer);
    code = validator->ValidatePassword(&user, &secret, &answer);
    if (SUCCEEDED(code)) code = VariantChangeType(&answer, &answer, 0, VT_I4);
    const bool is_right = SUCCEEDED(code) && answer.lVal == 0;
    for (VARIANT* value : {&user, &secret, &answer}) VariantClear(value);
    return FAILED(code) ? failed("ValidatePassword", code) : is_right ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fputs("usage: check-password SITE.INI USER\n", stderr);
        return 2;
    }
    CoInitialize(nullptr);
    void* made = nullptr;
    const HRESULT code =
        CoCreateInstance(CLSID_Validator, nullptr, CLSCTX_INPROC_SERVER, IID_IValidator, &made);
    int result = 2;
    if (FAILED(code)) {
        failed("CoCreateInstance", code);
    } else {
        IValidator* validator = static_cast<IValidator*>(made);
        result = check(validator, words);
        validator->Release();
    }
    CoUninitialize();
    return result;
}
