#include "runtime/err_object.h"

namespace sentrune::rt {

void ErrObject::Raise(int32_t number, std::string source, std::string description,
                      std::string helpFile, int32_t helpContext) {
  if (number == 0) {
    number = errnum::kInvalidProcedureCall;
    description.clear();
  }
  if (description.empty()) description = DescribeError(number);
  state_ = Saved{number, std::move(source), std::move(description), std::move(helpFile),
                 helpContext};
}

void ErrObject::Set(const VbError& error) {
  state_ = Saved{error.number, error.source, error.description, {}, 0};
}

}  // namespace sentrune::rt
