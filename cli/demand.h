#pragma once

#include "cli/query.h"

namespace zelk::cli {

/// What a query takes by a rough estimate, in bits.
struct Demand {
  double held;            // by its answer, printed too, and by what the library keeps for it
  double worked_through;  // by all steps together
  double steps = 0;       // terms and convergents, where the library counts them
};

/// The demand of a query of each function, whose answer is printed with `places` decimals.
Demand demand_of_cf(Query const& query, unsigned places);
Demand demand_of_approx(Query const& query, unsigned places);
Demand demand_of_convergents(Query const& query, unsigned places);
Demand demand_of_simplest(Query const& query, unsigned places);
Demand demand_of_exp(Query const& query, unsigned places);
Demand demand_of_sine(Query const& query, unsigned places);
Demand demand_of_pi(Query const& query, unsigned places);
Demand demand_of_expression(Query const& query, unsigned places);

}  // namespace zelk::cli
