#pragma once
// How every reader of module bytes has wabt read them, and wabt's errors as one refusal text: the
// bottom of the engine, shared by the code analysis, the module reader and the metering rewrite.

#include <wabt/binary-reader.h>
#include <wabt/error.h>

#include <string>

namespace ravo::orx::internal {

// The default features, no debug names, stopping at the first error, custom sections ignored when
// malformed.
wabt::ReadBinaryOptions wabtReadOptions();

// wabt's errors as one refusal text, "CompileError: …", quoted as OrxQuotedText.h says.
std::string wabtCompileError(const wabt::Errors& errors);

}  // namespace ravo::orx::internal
