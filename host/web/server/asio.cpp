// The compiled parts of Asio, once.

#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
