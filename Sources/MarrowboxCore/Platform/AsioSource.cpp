// The one translation unit that holds Asio's own code; every other one only declares it.
#include <boost/asio/impl/src.hpp>
