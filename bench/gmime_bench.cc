// The job of zqv-bench done with GMime, a widely used parser in C. It parses the message from
// memory, gets every header field of every part, the addresses, the subject and the date, decodes
// every body, converts texts to UTF-8, and makes text from HTML when there is no plain text.
//
// GMime makes no host objects and copies only what is requested, so it does less work.
#include <gmime/gmime.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/unicode.h"
#include "bench/throughput.h"
#include "text/html_to_text.h"

namespace zqv::bench {
namespace {

// All results are added up here, so that the compiler cannot remove the work.
volatile std::size_t sum = 0;

void Use(const char* text) {
  if (text != nullptr) sum = sum + static_cast<unsigned char>(*text);
}

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <class Object>
using Owned = std::unique_ptr<Object, Unref>;

// The texts that decide whether plain text is made from HTML.
struct Texts {
  bool has_plain = false;
  std::string html;
};

void ReadAddresses(InternetAddressList* list) {
  const int count = list != nullptr ? internet_address_list_length(list) : 0;
  for (int i = 0; i < count; ++i) {
    InternetAddress* const address = internet_address_list_get_address(list, i);
    Use(internet_address_get_name(address));
    if (INTERNET_ADDRESS_IS_GROUP(address)) {
      ReadAddresses(internet_address_group_get_members(INTERNET_ADDRESS_GROUP(address)));
    } else {
      Use(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address)));
    }
  }
}

void ReadHeaders(GMimeObject* object) {
  GMimeHeaderList* const headers = g_mime_object_get_header_list(object);
  const int count = g_mime_header_list_get_count(headers);
  for (int i = 0; i < count; ++i) {
    GMimeHeader* const header = g_mime_header_list_get_header_at(headers, i);
    Use(g_mime_header_get_name(header));
    Use(g_mime_header_get_value(header));
  }
}

void ReadText(GMimeObject* part, Texts* texts) {
  char* const text = g_mime_text_part_get_text(GMIME_TEXT_PART(part));
  if (text == nullptr) return;
  GMimeContentType* const type = g_mime_object_get_content_type(part);
  if (g_mime_content_type_is_type(type, "text", "html") == 0) {
    texts->has_plain = true;
  } else if (texts->html.empty()) {
    texts->html = text;
  }
  Use(text);
  g_free(text);
}

void ReadFile(GMimePart* part) {
  GMimeDataWrapper* const content = g_mime_part_get_content(part);
  if (content == nullptr) return;
  const Owned<GMimeStream> decoded(g_mime_stream_mem_new());
  g_mime_data_wrapper_write_to_stream(content, decoded.get());
  sum = sum + g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(decoded.get()))->len;
}

void ReadMessage(GMimeMessage* message, Texts* texts);

void ReadObject(GMimeObject* object, Texts* texts) {
  if (object == nullptr) return;
  ReadHeaders(object);
  if (GMIME_IS_MULTIPART(object)) {
    GMimeMultipart* const multipart = GMIME_MULTIPART(object);
    const int count = g_mime_multipart_get_count(multipart);
    for (int i = 0; i < count; ++i) ReadObject(g_mime_multipart_get_part(multipart, i), texts);
  } else if (GMIME_IS_MESSAGE_PART(object)) {
    GMimeMessage* const inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(object));
    if (inner != nullptr) ReadMessage(inner, texts);
  } else if (GMIME_IS_PART(object)) {
    GMimePart* const part = GMIME_PART(object);
    Use(g_mime_part_get_filename(part));
    if (GMIME_IS_TEXT_PART(object) && g_mime_part_is_attachment(part) == 0) {
      ReadText(object, texts);
    } else {
      ReadFile(part);
    }
  }
}

void ReadMessage(GMimeMessage* message, Texts* texts) {
  ReadHeaders(GMIME_OBJECT(message));
  for (int type = GMIME_ADDRESS_TYPE_SENDER; type <= GMIME_ADDRESS_TYPE_BCC; ++type) {
    ReadAddresses(g_mime_message_get_addresses(message, static_cast<GMimeAddressType>(type)));
  }
  Use(g_mime_message_get_subject(message));
  GDateTime* const date = g_mime_message_get_date(message);
  if (date != nullptr) sum = sum + static_cast<std::size_t>(g_date_time_to_unix(date));
  ReadObject(g_mime_message_get_mime_part(message), texts);
}

// Uses this library's converter for both, because the parsers are compared.
void MakeText(const std::string& html) {
  if (base::IsAscii(html)) {
    sum = sum + text::HtmlToPlainText(std::string_view(html)).size();
    return;
  }
  std::u32string wide(html.size(), U'\0');
  wide.resize(base::Utf8ToUtf32(html, wide.data()).written);
  sum = sum + text::HtmlToPlainText(std::u32string_view(wide)).size();
}

// Does the whole job on one message, without copying it.
void Read(std::string& message) {
  GByteArray bytes{};
  bytes.data = static_cast<guint8*>(static_cast<void*>(message.data()));
  bytes.len = static_cast<guint>(message.size());
  const Owned<GMimeStream> stream(g_mime_stream_mem_new_with_byte_array(&bytes));
  g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(stream.get()), FALSE);
  const Owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
  const Owned<GMimeMessage> parsed(g_mime_parser_construct_message(parser.get(), nullptr));
  if (parsed == nullptr) return;
  Texts texts;
  ReadMessage(parsed.get(), &texts);
  if (!texts.has_plain && !texts.html.empty()) MakeText(texts.html);
}

Job Prepare(std::vector<std::string> messages) {
  g_mime_init();
  const auto held = std::make_shared<std::vector<std::string>>(std::move(messages));
  return [held](std::size_t index) { Read((*held)[index]); };
}

}  // namespace
}  // namespace zqv::bench

int main(int argc, char** argv) {
  return zqv::bench::ThroughputMain(argc, argv, "gmime", "Measures how fast GMime reads messages",
                                    zqv::bench::Prepare);
}
