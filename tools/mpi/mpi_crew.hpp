// The processes of an MPI job as the crew of a run.
#pragma once

#include "pulse.hpp"
#include "remote_periods.hpp"
#include "run/crew.hpp"
#include "shared_store.hpp"

#include <memory>
#include <optional>

class MpiCrew final : public Crew {
  public:
    // Behind MPI_Init_thread, in all processes. The stop routine ends the process by MPI from here on.
    MpiCrew();
    bool leads() const override { return rank_ == 0; }
    int processes() const override { return size_; }
    void share_input(RunState &run) override;
    void share_flows(SteadyFlow &flow) override;
    void measure_memory(Memory &memory) override;
    void divide_memory(Memory &memory) override;
    [[nodiscard]] Status allocate_rankine(RunState &run) override;
    RowShare rankine_rows() const override { return store_->shared() ? store_->rows() : RowShare{}; }
    void rankine_is_filled() override { store_->wait_for_all(); }
    PeriodExchange &open_exchange(PeriodBook *book, int threads, int &first_thread) override;
    void close_exchange() override;

  private:
    void end(const ListReport &report);
    void enter_own_folder() const;

    int rank_ = 0, size_ = 1;
    int node_rank_ = 0, node_size_ = 1; // among the processes of this computer
    MPI_Comm node_ = MPI_COMM_NULL;
    MPI_Comm periods_ = MPI_COMM_NULL; // for the exchange of periods alone
    std::unique_ptr<Pulse> pulse_;
    std::unique_ptr<SharedStore> store_;
    std::optional<RemotePeriods> remote_;
    std::unique_ptr<PeriodService> service_;
};
