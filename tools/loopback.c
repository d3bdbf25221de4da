/* Keeps a program's listening sockets on this machine: a bind to "any address" becomes a bind to
 * the loopback address. Qt's vnc platform always listens on every network interface and asks for no
 * password; with this preloaded, what is on the screen stays on the machine. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <netinet/in.h>
#include <string.h>
#include <sys/socket.h>

typedef int (*bind_function)(int, const struct sockaddr *, socklen_t);

int bind(int socket, const struct sockaddr *address, socklen_t length)
{
    bind_function system_bind;
    struct sockaddr_in6 six;
    struct sockaddr_in four;
    *(void **)&system_bind = dlsym(RTLD_NEXT, "bind");
    if (address->sa_family == AF_INET6 && length >= sizeof six) {
        memcpy(&six, address, sizeof six);
        if (IN6_IS_ADDR_UNSPECIFIED(&six.sin6_addr)) {
            /* 127.0.0.1 as an IPv6 socket sees it */
            static const unsigned char mapped[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 127, 0, 0, 1};
            memcpy(&six.sin6_addr, mapped, sizeof mapped);
            return system_bind(socket, (const struct sockaddr *)&six, sizeof six);
        }
    }
    if (address->sa_family == AF_INET && length >= sizeof four) {
        memcpy(&four, address, sizeof four);
        if (four.sin_addr.s_addr == htonl(INADDR_ANY)) {
            four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            return system_bind(socket, (const struct sockaddr *)&four, sizeof four);
        }
    }
    return system_bind(socket, address, length);
}
