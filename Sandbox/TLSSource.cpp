// The one translation unit that holds the code of Asio's TLS; the core, which has no use for it, stays
// without.
#include <boost/asio/ssl/impl/src.hpp>
