#ifndef TOOLS_VRTOOL_SERVICESCOMMAND_H
#define TOOLS_VRTOOL_SERVICESCOMMAND_H

#include "tools/vrtool/Command.h"

// What can be asked of a service: to start, or to stop.
struct ServiceRequest;

// `vrtool services start NAME` and `vrtool services stop NAME`.
class ServiceRequestCommand : public Command {
  public:
    // @param request outlives the object
    explicit ServiceRequestCommand(ServiceRequest const& request);

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    ServiceRequest const& m_request;
    CLI::Option* m_name = nullptr;
};

// `vrtool services`: how the server's services are; and the two above.
class ServicesCommand : public Command {
  public:
    ServicesCommand();

    int run(Console& console) const override;

  private:
    void declare(CLI::App& arguments) override;

    ServiceRequestCommand m_start;
    ServiceRequestCommand m_stop;
    bool m_json = false;
};

#endif
