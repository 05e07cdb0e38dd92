// The console start of the solver.
#include "run/driver.hpp"

int main() {
    run_solver();
}
