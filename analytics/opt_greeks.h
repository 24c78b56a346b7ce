#pragma once

#include "analytics/glc_iv_theory.h"

namespace iorder {

/// The holder through which an option is priced: takes the inputs of the model and makes it ready. It
/// computes no greek.
class COptGreeks {
 public:
  virtual ~COptGreeks() = default;

  void SetInputs(const TheoryInputs& inputs) {
    m_theory.SetInputs(inputs);
    m_theory.UpdateCachedTerms();
  }

  /// Priced after SetInputs.
  GlcIVTheory& Theory() { return m_theory; }

 private:
  GlcIVTheory m_theory;
};

}  // namespace iorder
