// JSON output. Each document is an object that begins with {"format_version": 1, "file": name of
// the message} and has one more key. docs/schema.json describes all documents.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "cli/output.h"
#include "standin/handles.h"

namespace zqv::cli {

using JsonValue = nlohmann::ordered_json;

inline constexpr int kDocumentVersion = 1;

// Returns the text of a document, without a line end at its end. All control characters are
// escaped, also those that JSON allows unescaped, because they would control a terminal. kLine
// writes the document on one line, without indentation.
enum class DocumentForm { kIndented, kLine };
std::string DocumentText(const std::string& name, const char* key, JsonValue value,
                         DocumentForm form = DocumentForm::kIndented);
// Returns the text of a document that does not belong to a message.
std::string DocumentText(const char* key, JsonValue value);

void PrintDocument(const std::string& name, const char* key, JsonValue value, Output* output);
void PrintDocument(const char* key, JsonValue value, Output* output);

// Returns a value on one line, escaped like a document.
std::string JsonLine(const JsonValue& value);

// Returns null for an empty text.
JsonValue TextOrNull(const std::string& text);
// Returns a host string in UTF-8 without blanks at its ends. Null when nothing is left.
JsonValue LineOrNull(const standin::String& string);

}  // namespace zqv::cli
