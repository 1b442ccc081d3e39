#pragma once

#include "cli/query.h"

namespace zelk::cli {

/// What a query takes by a rough estimate, in bits.
struct Demand {
  double held;            // by its answer, printed too, and by what the library keeps for it
  double worked_through;  // by all steps together
  double steps = 0;       // terms and convergents, where the library counts them
};

/// The demand of a query of each function.
Demand demand_of_cf(Query const& query);
Demand demand_of_approx(Query const& query);
Demand demand_of_convergents(Query const& query);
Demand demand_of_simplest(Query const& query);
Demand demand_of_exp(Query const& query);
Demand demand_of_sine(Query const& query);
Demand demand_of_pi(Query const& query);
Demand demand_of_expression(Query const& query);

}  // namespace zelk::cli
