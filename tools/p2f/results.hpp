// All results of a file, for the commands that write them as other files.
#pragma once

#include "command.hpp"

#include "exchange/dataset.hpp"

// Reads the case and fills `data` but for its provenance. False with the reason in `error`.
[[nodiscard]] bool form_results(const CaseRequest &of_case, const DataWants &wants, const P2fFile &p2f,
                                DataSet &data, std::string &error);

// The options of a case as typed, with a blank in front.
std::string case_text(const CaseRequest &of_case);
