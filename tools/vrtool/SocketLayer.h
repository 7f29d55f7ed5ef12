#ifndef TOOLS_VRTOOL_SOCKETLAYER_H
#define TOOLS_VRTOOL_SOCKETLAYER_H

// The platform's socket layer, which works while this object lives. The library leaves it to its
// hosts to start it, and finds no address without it.
class SocketLayer {
  public:
    // @throws std::system_error if the layer cannot be started
    SocketLayer();
    SocketLayer(SocketLayer const&) = delete;
    SocketLayer& operator=(SocketLayer const&) = delete;
    ~SocketLayer();
};

#endif
