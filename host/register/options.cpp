#include "host/register/options.h"

namespace orvo {

RegisterCommandLine::RegisterCommandLine()
    : CommandLine("orvo-register",
                  "Registers component modules for this user, or takes them out again.") {
    add_option("MODULE", modules, "A module, which is a shared library (.so)")->required();
    add_option(
        "--class", classes,
        "A class of the one module, which does not register itself: its name and identifier. May "
        "be given several times")
        ->option_text("PROGID={CLSID}")
        ->allow_extra_args(false);
    add_flag("--unregister", unregister, "Take them out");
    footer(
        "A module is known by a manifest, a small file in ~/.local/share/orvo/components.\n"
        "\n"
        "Environment:\n"
        "  ORVO_COMPONENTS  folders of manifests; the first is used instead of the user's\n"
        "\n"
        "Exit status:\n"
        "  0  all is done\n"
        "  1  a module refused, or cannot be loaded\n"
        "  2  it was called in a wrong way");
}

}  // namespace orvo
