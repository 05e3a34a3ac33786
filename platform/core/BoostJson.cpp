// Boost.JSON is used header-only; its implementation is compiled here, once.
#include <boost/json/src.hpp>
