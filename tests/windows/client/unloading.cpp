// The module is unloaded after its last object, whatever its threads still hold of their own, and
// can be loaded again.

#include <thread>

#include "check.h"

void check_unloading();

namespace {

bool is_loaded() { return GetModuleHandleW(L"OrvoMembership.dll") != nullptr; }

// Leaves state of the thread behind: its settings, its error object.
void use_the_thread() {
    const Held<ILdapAccess> entry = create<ILdapAccess>(__uuidof(LdapAccess));
    if (!entry.get()) return;
    Bstr name(L"mail");
    AnyValue value;
    check(FAILED(entry->GetAttribValue(name.put(), value.put())), "an unbound entry fails");
}

void check_one_life() {
    Held<IServerInfo> info = create<IServerInfo>(__uuidof(ServerInfo));
    use_the_thread();
    CoFreeUnusedLibraries();
    check(is_loaded(), "the module stays while there is an object");
    info.reset();

    Held<IClassFactory> factory;
    check_result(CoGetClassObject(__uuidof(ServerInfo), CLSCTX_INPROC_SERVER, nullptr,
                                  IID_IClassFactory, reinterpret_cast<void**>(factory.put())),
                 S_OK, "the class object");
    factory->LockServer(TRUE);
    CoFreeUnusedLibraries();
    check(is_loaded(), "the module stays while it is locked");
    factory->LockServer(FALSE);
    factory.reset();

    CoFreeUnusedLibraries();
    check(!is_loaded(), "the module goes with its last object");
}

}  // namespace

void check_unloading() {
    for (int life = 0; life < 20 && failure_count() == 0; ++life) check_one_life();

    // A thread that used the module outlives it.
    HANDLE used = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE unloaded = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread other([&] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        use_the_thread();
        CoFreeUnusedLibraries();
        SetEvent(used);
        WaitForSingleObject(unloaded, INFINITE);
        CoUninitialize();
    });
    WaitForSingleObject(used, INFINITE);
    CoFreeUnusedLibraries();
    check(!is_loaded(), "the module goes while a thread that used it lives");
    SetEvent(unloaded);
    other.join();
    CloseHandle(used);
    CloseHandle(unloaded);
    check_one_life();
}
