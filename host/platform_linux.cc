// The Linux port: the path of a file URL is the file's path.
#include "host/file_url.h"

namespace zqv::host {

std::string PathOfUrl(const FileUrl& url) { return url.server.empty() ? url.path : std::string(); }

}  // namespace zqv::host
