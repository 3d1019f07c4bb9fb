#include "api/file_name.h"
#include "env/entry.h"
#include "fileio/dispatch/read_problem.h"
#include "fileio/network/file.h"
#include "fileio/stream/stream.h"

using namespace tovik;

int TVKNETreadcopyprob(ConstEnvHandle env, NetProbHandle net, const char* filename) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) -> Status {
    if (filename == nullptr) return TVK_ERROR_NULL_POINTER;
    return fileio::read_network_file(e, p, filename);
  });
}

int TVKNETwriteprob(ConstEnvHandle env, ConstNetProbHandle net, const char* filename, const char* filetype) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    if (filetype != nullptr && !fileio::is_network_type(filetype)) return TVK_ERROR_FILE_TYPE;
    return fileio::write_network_file(e, p, filename);
  });
}
