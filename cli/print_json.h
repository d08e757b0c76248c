// The program's JSON: documents one after the other, each an object that begins with
// {"format_version": 1, "file": the message's name} and holds one thing more.
// docs/schema.json describes them all.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "cli/output.h"
#include "standin/handles.h"

namespace zqv::cli {

using JsonValue = nlohmann::ordered_json;

inline constexpr int kDocumentVersion = 1;

// A document's text without a line end. A JSON text holds control characters as escapes; those that
// steer terminals beside them are escaped too.
// `form` kLine leaves out line ends and indents.
enum class DocumentForm { kIndented, kLine };
std::string DocumentText(const std::string& name, const char* key, JsonValue value,
                         DocumentForm form = DocumentForm::kIndented);
// Of a document that is about no message.
std::string DocumentText(const char* key, JsonValue value);

void PrintDocument(const std::string& name, const char* key, JsonValue value, Output* output);
void PrintDocument(const char* key, JsonValue value, Output* output);

// One value on one line, escaped as documents are.
std::string JsonLine(const JsonValue& value);

// null for an empty text.
JsonValue TextOrNull(const std::string& text);
// A host's text in UTF-8, without the blanks around it; null when nothing is left.
JsonValue LineOrNull(const standin::String& string);

}  // namespace zqv::cli
