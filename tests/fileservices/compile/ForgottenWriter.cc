// Compiled by a test, not linked: a command input that forgets its writer must not be sendable,
// since it would inherit the envelope's and send none of its own keys. With WRITER_DECLARED it
// compiles, which shows that the missing writer is what stops it.
#include "fileservices/CallFrame.h"

namespace {

class ForgetfulInput : public Core::CommandIO::VersionedCommandInputBase {
public:
    ForgetfulInput() : VersionedCommandInputBase("FORGETFUL") {}
#ifdef WRITER_DECLARED
    VANTO_JSON_WRITER(ForgetfulInput)
#endif
    using Output = Corvane::CommandIO::CommandOutputBase;

    Core::TevString Name;

    VANTO_JSON_FIELDS(ForgetfulInput, (VersionedCommandInputBase), (Name))
};

} // namespace

namespace vanto::protocol {
template <> struct IsCatalogued<ForgetfulInput> : std::true_type {};
} // namespace vanto::protocol

void SendForgetful(const vanto::fileservices::CallFrame& frame) {
    ForgetfulInput input;
    frame.Execute(input);
}
