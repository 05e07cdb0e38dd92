#include "results.hpp"

#include <csignal>

bool form_results(const CaseRequest &of_case, const DataWants &wants, const P2fFile &p2f, DataSet &data,
                  std::string &error) {
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow has its message, as a full disk has
    data.p2f = &p2f;
    return load_case(of_case, p2f, data.of_case, error) && form_data_set(wants, data, error);
}

std::string case_text(const CaseRequest &of_case) {
    std::string text;
    if (of_case.density > 0) {
        char number[32];
        std::snprintf(number, sizeof number, " --density %g", of_case.density);
        text += number;
    }
    return of_case.file.empty() ? text : text + " --case " + of_case.file;
}
