// The state behind entry_points.h that is not of one entry point: the resolver and the version,
// which REALPluginMain sets before any other function of the library is called.
#include "host/entry_points.h"

namespace zqv::host {
namespace {

abi::Resolver g_resolver = nullptr;
double g_version = 0;

}  // namespace

void SetResolver(abi::Resolver resolver) { g_resolver = resolver; }

double HostVersion() { return g_version; }

void SetHostVersion(double version) { g_version = version; }

void* Resolve(const char* name) { return g_resolver != nullptr ? g_resolver(name) : nullptr; }

}  // namespace zqv::host
