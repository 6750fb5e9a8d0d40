#include "home/extension/Confinement.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <linux/capability.h>
#include <ranges>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "platform/foundation/Bundle.h"
#include "platform/os/SystemCallFilters.h"
#include "platform/os/UserFolders.h"

namespace quillpad::home {
namespace {

using Path = std::filesystem::path;

// Programs and libraries, zones, certificates, how names are looked up. Of /etc only this: there
// are keys in it.
constexpr std::array systemPlaces{"/usr",           "/bin",
                                  "/sbin",          "/lib",
                                  "/lib64",         "/etc/ld.so.cache",
                                  "/etc/localtime", "/etc/timezone",
                                  "/etc/ssl/certs", "/etc/ssl/openssl.cnf",
                                  "/etc/gai.conf",  "/etc/host.conf",
                                  "/etc/hosts",     "/etc/nsswitch.conf",
                                  "/etc/protocols", "/etc/resolv.conf",
                                  "/etc/services",  "/run/systemd/resolve",
                                  "/dev/null",      "/dev/random",
                                  "/dev/urandom",   "/dev/zero"};

// Each names a file or a folder, or several with colons between.
constexpr std::array placeVariables{
    "SSL_CERT_FILE", "SSL_CERT_DIR", "TZDIR", "LD_LIBRARY_PATH", "LD_PRELOAD"};

bool holds(const Path& folder, const std::optional<Path>& place) {
  std::error_code error;
  const Path inside = place ? std::filesystem::weakly_canonical(*place, error) : Path();
  return std::ranges::mismatch(folder, inside).in1 == folder.end();
}

std::vector<Path> readablePlaces(const Path& program) {
  std::vector<Path> places(systemPlaces.begin(), systemPlaces.end());
  for (const char* variable : placeVariables) {
    const char* value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
    for (const auto place :
         std::string_view(value == nullptr ? "" : value) | std::views::split(':')) {
      places.emplace_back(place.begin(), place.end());
    }
  }
  const std::optional<Path> data = userDataFolder();
  if (data) {
    places.push_back(*data);
  }
  std::error_code error;
  const Path file = std::filesystem::canonical(program, error);
  const Path folder = file.parent_path();
  places.push_back(Bundle::ofProgram(file).folder());
  // One that lies among all that the user has is not shown what lies there.
  places.push_back(holds(folder, data) || holds(folder, userStateFolder()) ? file : folder);
  return places;
}

std::pair<dev_t, ino_t> identityOf(const Path& place) {
  struct stat about{};
  return ::stat(place.c_str(), &about) == 0 ? std::pair{about.st_dev, about.st_ino}
                                            : std::pair{dev_t{0}, ino_t{0}};
}

// Of all users; its own are not counted apart without reading every one.
rlim_t processesNow() {
  std::ifstream file("/proc/loadavg");
  std::string load;
  rlim_t running = 0;
  char slash = 0;
  rlim_t all = 0;
  file >> load >> load >> load >> running >> slash >> all;
  return all;
}

bool limit(__rlimit_resource resource, rlim_t most) {
  rlimit limits{};
  ::getrlimit(resource, &limits);
  limits.rlim_max = std::min(limits.rlim_max, most);
  limits.rlim_cur = std::min(limits.rlim_cur, limits.rlim_max);
  return ::setrlimit(resource, &limits) == 0;
}

bool limitToMark() {
  rlimit limits{};
  ::getrlimit(Confinement::mark, &limits);
  return limit(Confinement::mark, limits.rlim_max - 1);
}

bool limitMemory() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return true;
#else
  return limit(RLIMIT_AS, Confinement::maxAddressSpace) && limit(RLIMIT_DATA, Confinement::maxData);
#endif
}

// Root could raise its limits again, and much else; that files are others' does not keep it from
// reading them.
bool dropCapabilities() {
  constexpr std::uint32_t kept = 1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH;
  __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
  if (::syscall(SYS_capget, &header, sets.data()) != 0) {
    return false;
  }
  const std::uint32_t left = sets[0].permitted & kept;
  sets = {__user_cap_data_struct{.effective = left, .permitted = left, .inheritable = 0}};
  return ::syscall(SYS_capset, &header, sets.data()) == 0;
}

}  // namespace

Confinement::Confinement(LandlockRuleset files)
    : files_(std::move(files)), maxProcesses_(processesNow() + maxMoreProcesses) {}

std::expected<Confinement, std::string> Confinement::of(const std::filesystem::path& program) {
  auto files = LandlockRuleset::ofFiles();
  if (!files) {
    return std::unexpected(
        "its files cannot be closed to it: " + std::string(std::strerror(files.error())) +
        "; end other programs and try again");
  }
  Confinement confinement(std::move(*files));
  confinement.files_.allowWriting("/dev/null");
  for (Path& path : readablePlaces(program)) {
    const auto [device, file] = identityOf(path);
    confinement.files_.allowReading(path.c_str());
    confinement.places_.push_back({.path = std::move(path), .device = device, .file = file});
  }
  return confinement;
}

bool Confinement::enter() const {
  files_.allowReading("/proc/self");
  constexpr rlim_t fileBytes = 0;  // of files in memory, the others cannot be written
  constexpr rlim_t coreBytes = 1;  // unlike none, also holds where cores are handed to a program
  return limitMemory() && limit(RLIMIT_NOFILE, maxDescriptors) &&
         limit(RLIMIT_NPROC, maxProcesses_) && limit(RLIMIT_FSIZE, fileBytes) &&
         limit(RLIMIT_CORE, coreBytes) && limitToMark() && files_.enter() && dropCapabilities();
}

bool Confinement::isStale() const {
  return std::ranges::any_of(places_, [](const Place& place) {
    return identityOf(place.path) != std::pair{place.device, place.file};
  });
}

std::string confinementGap() {
  const int landlock = LandlockRuleset::kernelVersion();
  std::vector<std::string> open;
  if (landlock == 0) {
    open.emplace_back("the files of its user");
  }
  if (landlock < 4) {
    open.emplace_back("any port");
  }
  if (!kernelHasSystemCallFilters()) {
    open.emplace_back("other programs");
  }
  if (open.empty()) {
    return "";
  }
  std::string list;
  for (const std::string& each : open) {
    list += (list.empty() ? "" : ", ") + each;
  }
  return "on this kernel the extension is not kept from " + list + "; a newer one keeps it";
}

}  // namespace quillpad::home
