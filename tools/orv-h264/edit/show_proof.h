// The proof of an edit, for a person and as JSON.
#pragma once

#include "edit/proof.h"

#include <string>

namespace orv_h264 {

/// Lines.
std::string text_of(const proof& shown, bool dry_run);

/// One JSON object, as docs/schema/edit.schema.json has it.
void print_json(const proof& shown, const std::string& input_name, const std::string& out, h264::framing framing,
                bool dry_run);

} // namespace orv_h264
