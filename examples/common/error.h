// What the example codecs throw: a message of one line for the user.
#pragma once

#include <stdexcept>

namespace examples {

struct Error : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace examples
