/* The record of a network object: its construction, which takes the network with it. */
#include "env/network_problem.h"

#include "model/network/network.h"

namespace tovik {

NetworkProblem::NetworkProblem(Environment& environment)
    : env(&environment), network(std::make_unique<model::Network>()), live(this, HandleKind::network) {}

NetworkProblem::~NetworkProblem() = default;

}  // namespace tovik
