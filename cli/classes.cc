// `zqv classes`: every class and member that the library registered.
#include "cli/verbs.h"

namespace zqv::cli {

int Classes(const Session& session, const Request&, Output* output) {
  output->Print(session.host().ListClasses());
  return 0;
}

}  // namespace zqv::cli
