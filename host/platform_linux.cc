// The Linux port: the path of a file URL stands in it as it is.
#include "host/file_url.h"

namespace zqv::host {

std::string PathOfUrl(const FileUrl& url) { return url.server.empty() ? url.path : std::string(); }

}  // namespace zqv::host
