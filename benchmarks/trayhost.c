/* trayhost [--xembed|--sni]: a minimal panel stand-in for measurements; without an option it is
 * both.
 * - owns org.kde.StatusNotifierWatcher and is a StatusNotifierHost (libdbus)
 * - owns the _NET_SYSTEM_TRAY_S0 selection and docks XEmbed icons (xcb)
 * Prints one line per event:  <realtime seconds.microseconds> SNI|XEMBED|NEWICON|PIXMAP ...
 * Uses no toolkit, so that it shares only libc/libdbus/libxcb pages with what is measured. */
#define _GNU_SOURCE
#include <dbus/dbus.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>
#include <xcb/xcb.h>

static DBusConnection *bus;
static char *items[64];
static int nitems;

static void ev(const char *what, const char *arg)
{
    struct timespec t;
    clock_gettime(CLOCK_REALTIME, &t);
    printf("%ld.%06ld %s %s\n", (long)t.tv_sec, t.tv_nsec / 1000, what, arg);
    fflush(stdout);
}

static void ask_all(const char *svc, const char *path)
{
    DBusMessage *m
        = dbus_message_new_method_call(svc, path, "org.freedesktop.DBus.Properties", "GetAll");
    const char *i = "org.kde.StatusNotifierItem";
    if (!m)
        return;
    dbus_message_append_args(m, DBUS_TYPE_STRING, &i, DBUS_TYPE_INVALID);
    dbus_connection_send(bus, m, NULL);
    dbus_message_unref(m);
}

static void var_basic(DBusMessageIter *it, const char *sig, int type, const void *v)
{
    DBusMessageIter s;
    dbus_message_iter_open_container(it, DBUS_TYPE_VARIANT, sig, &s);
    dbus_message_iter_append_basic(&s, type, v);
    dbus_message_iter_close_container(it, &s);
}
static void var_items(DBusMessageIter *it)
{
    DBusMessageIter s, a;
    dbus_message_iter_open_container(it, DBUS_TYPE_VARIANT, "as", &s);
    dbus_message_iter_open_container(&s, DBUS_TYPE_ARRAY, "s", &a);
    for (int i = 0; i < nitems; i++)
        dbus_message_iter_append_basic(&a, DBUS_TYPE_STRING, &items[i]);
    dbus_message_iter_close_container(&s, &a);
    dbus_message_iter_close_container(it, &s);
}
static void put_prop(DBusMessageIter *it, const char *name)
{
    dbus_bool_t yes = TRUE;
    int zero = 0;
    if (!strcmp(name, "IsStatusNotifierHostRegistered"))
        var_basic(it, "b", DBUS_TYPE_BOOLEAN, &yes);
    else if (!strcmp(name, "ProtocolVersion"))
        var_basic(it, "i", DBUS_TYPE_INT32, &zero);
    else
        var_items(it);
}

static const char *xml
    = "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\" "
      "\"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">"
      "<node><interface name=\"org.freedesktop.DBus.Introspectable\"><method "
      "name=\"Introspect\"><arg "
      "direction=\"out\" type=\"s\"/></method></interface>"
      "<interface name=\"org.freedesktop.DBus.Properties\"><method name=\"Get\"><arg "
      "direction=\"in\" "
      "type=\"s\"/><arg direction=\"in\" type=\"s\"/><arg direction=\"out\" type=\"v\"/></method>"
      "<method name=\"GetAll\"><arg direction=\"in\" type=\"s\"/><arg direction=\"out\" "
      "type=\"a{sv}\"/></method></interface>"
      "<interface name=\"org.kde.StatusNotifierWatcher\">"
      "<method name=\"RegisterStatusNotifierItem\"><arg direction=\"in\" type=\"s\"/></method>"
      "<method name=\"RegisterStatusNotifierHost\"><arg direction=\"in\" type=\"s\"/></method>"
      "<property name=\"RegisteredStatusNotifierItems\" type=\"as\" access=\"read\"/>"
      "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
      "<property name=\"ProtocolVersion\" type=\"i\" access=\"read\"/>"
      "<signal name=\"StatusNotifierItemRegistered\"><arg type=\"s\"/></signal>"
      "<signal name=\"StatusNotifierItemUnregistered\"><arg type=\"s\"/></signal>"
      "<signal name=\"StatusNotifierHostRegistered\"/></interface></node>";

static DBusHandlerResult filter(DBusConnection *c, DBusMessage *m, void *u)
{
    (void)u;
    DBusMessage *r = NULL;
    if (dbus_message_is_method_call(
            m, "org.kde.StatusNotifierWatcher", "RegisterStatusNotifierItem")) {
        const char *s = NULL;
        char full[512];
        const char *svc, *path;
        if (!dbus_message_get_args(m, NULL, DBUS_TYPE_STRING, &s, DBUS_TYPE_INVALID))
            return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
        if (s[0] == '/') {
            svc = dbus_message_get_sender(m);
            path = s;
        } else {
            svc = s;
            path = "/StatusNotifierItem";
        }
        snprintf(full, sizeof full, "%s%s", svc, path);
        ev("SNI", full);
        if (nitems < 64)
            items[nitems++] = strdup(full);
        r = dbus_message_new_method_return(m);
        dbus_connection_send(c, r, NULL);
        dbus_message_unref(r);
        DBusMessage *sig = dbus_message_new_signal("/StatusNotifierWatcher",
            "org.kde.StatusNotifierWatcher", "StatusNotifierItemRegistered");
        const char *f = full;
        dbus_message_append_args(sig, DBUS_TYPE_STRING, &f, DBUS_TYPE_INVALID);
        dbus_connection_send(c, sig, NULL);
        dbus_message_unref(sig);
        ask_all(svc, path);
        return DBUS_HANDLER_RESULT_HANDLED;
    }
    if (dbus_message_is_method_call(
            m, "org.kde.StatusNotifierWatcher", "RegisterStatusNotifierHost"))
        r = dbus_message_new_method_return(m);
    else if (dbus_message_is_method_call(m, "org.freedesktop.DBus.Properties", "Get")) {
        const char *i, *p;
        DBusMessageIter it;
        if (dbus_message_get_args(
                m, NULL, DBUS_TYPE_STRING, &i, DBUS_TYPE_STRING, &p, DBUS_TYPE_INVALID)) {
            r = dbus_message_new_method_return(m);
            dbus_message_iter_init_append(r, &it);
            put_prop(&it, p);
        }
    } else if (dbus_message_is_method_call(m, "org.freedesktop.DBus.Properties", "GetAll")) {
        static const char *names[] = {
            "IsStatusNotifierHostRegistered", "ProtocolVersion", "RegisteredStatusNotifierItems"};
        DBusMessageIter it, a, e;
        r = dbus_message_new_method_return(m);
        dbus_message_iter_init_append(r, &it);
        dbus_message_iter_open_container(&it, DBUS_TYPE_ARRAY, "{sv}", &a);
        for (int k = 0; k < 3; k++) {
            dbus_message_iter_open_container(&a, DBUS_TYPE_DICT_ENTRY, NULL, &e);
            dbus_message_iter_append_basic(&e, DBUS_TYPE_STRING, &names[k]);
            put_prop(&e, names[k]);
            dbus_message_iter_close_container(&a, &e);
        }
        dbus_message_iter_close_container(&it, &a);
    } else if (dbus_message_is_method_call(
                   m, "org.freedesktop.DBus.Introspectable", "Introspect")) {
        r = dbus_message_new_method_return(m);
        dbus_message_append_args(r, DBUS_TYPE_STRING, &xml, DBUS_TYPE_INVALID);
    } else if (dbus_message_is_signal(m, "org.kde.StatusNotifierItem", "NewIcon")) {
        ev("NEWICON", dbus_message_get_sender(m));
        ask_all(dbus_message_get_sender(m), dbus_message_get_path(m));
        return DBUS_HANDLER_RESULT_HANDLED;
    } else if (dbus_message_get_type(m) == DBUS_MESSAGE_TYPE_METHOD_RETURN) {
        char b[64];
        char *raw;
        int len = 0;
        if (dbus_message_marshal(m, &raw, &len))
            dbus_free(raw);
        if (len > 400) {
            snprintf(b, sizeof b, "%d bytes", len);
            ev("PROPS", b);
        }
    }
    if (r) {
        dbus_connection_send(c, r, NULL);
        dbus_message_unref(r);
        return DBUS_HANDLER_RESULT_HANDLED;
    }
    return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}

static xcb_atom_t atom(xcb_connection_t *x, const char *n)
{
    xcb_intern_atom_reply_t *r
        = xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, strlen(n), n), NULL);
    xcb_atom_t a = r ? r->atom : 0;
    free(r);
    return a;
}

int main(int argc, char **argv)
{
    const int with_sni = argc < 2 || strcmp(argv[1], "--xembed") != 0;
    const int with_xembed = argc < 2 || strcmp(argv[1], "--sni") != 0;
    DBusError e = DBUS_ERROR_INIT;
    bus = dbus_bus_get(DBUS_BUS_SESSION, &e);
    if (!bus) {
        fprintf(stderr, "trayhost: %s\n", e.message);
        return 1;
    }
    if (with_sni) {
        dbus_connection_add_filter(bus, filter, NULL, NULL);
        dbus_bus_add_match(bus, "type='signal',interface='org.kde.StatusNotifierItem'", NULL);
        dbus_bus_request_name(bus, "org.kde.StatusNotifierHost-1", 0, NULL);
        dbus_bus_request_name(bus, "org.kde.StatusNotifierWatcher", 0, NULL);
        DBusMessage *sig = dbus_message_new_signal("/StatusNotifierWatcher",
            "org.kde.StatusNotifierWatcher", "StatusNotifierHostRegistered");
        dbus_connection_send(bus, sig, NULL);
        dbus_message_unref(sig);
        dbus_connection_flush(bus);
    }

    int xfd = -1;
    xcb_window_t box = 0;
    xcb_atom_t opcode = 0, xembed = 0;
    xcb_connection_t *x = with_xembed ? xcb_connect(NULL, NULL) : NULL;
    if (x && xcb_connection_has_error(x))
        x = NULL;
    if (x) {
        xcb_screen_t *sc = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
        uint32_t v[3] = {1, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
        box = xcb_generate_id(x);
        xcb_create_window(x, XCB_COPY_FROM_PARENT, box, sc->root, 0, 0, 400, 24, 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, sc->root_visual,
            XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, v);
        xcb_map_window(x, box);
        xcb_atom_t sel = atom(x, "_NET_SYSTEM_TRAY_S0"), man = atom(x, "MANAGER");
        xcb_atom_t orient = atom(x, "_NET_SYSTEM_TRAY_ORIENTATION"),
                   vis = atom(x, "_NET_SYSTEM_TRAY_VISUAL");
        opcode = atom(x, "_NET_SYSTEM_TRAY_OPCODE");
        xembed = atom(x, "_XEMBED");
        uint32_t o = 0, vid = sc->root_visual;
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, box, orient, XCB_ATOM_CARDINAL, 32, 1, &o);
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, box, vis, XCB_ATOM_VISUALID, 32, 1, &vid);
        xcb_set_selection_owner(x, box, sel, XCB_CURRENT_TIME);
        xcb_client_message_event_t c
            = {.response_type = XCB_CLIENT_MESSAGE, .format = 32, .window = sc->root, .type = man};
        c.data.data32[1] = sel;
        c.data.data32[2] = box;
        xcb_send_event(x, 0, sc->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY, (char *)&c);
        xcb_flush(x);
        xfd = xcb_get_file_descriptor(x);
    }
    ev("HOST", "ready");
    int dfd = -1;
    dbus_connection_get_unix_fd(bus, &dfd);
    int next = 1;
    for (;;) {
        struct pollfd p[2] = {{dfd, POLLIN, 0}, {xfd, POLLIN, 0}};
        while (dbus_connection_dispatch(bus) == DBUS_DISPATCH_DATA_REMAINS) { }
        dbus_connection_flush(bus);
        if (poll(p, x ? 2 : 1, -1) < 0)
            continue;
        if (p[0].revents & (POLLHUP | POLLERR))
            return 0;
        if (p[0].revents && !dbus_connection_read_write(bus, 0))
            return 0;
        if (x && p[1].revents) {
            xcb_generic_event_t *g;
            if (xcb_connection_has_error(x))
                return 0;
            while ((g = xcb_poll_for_event(x))) {
                if ((g->response_type & 0x7f) == XCB_CLIENT_MESSAGE) {
                    xcb_client_message_event_t *cm = (void *)g;
                    if (cm->type == opcode && cm->data.data32[1] == 0) {
                        xcb_window_t w = cm->data.data32[2];
                        char b[32];
                        /* As wide as it asks to be, like the panels that take a wide item. */
                        uint32_t sz[2] = {22, 22};
                        xcb_get_geometry_reply_t *asked
                            = xcb_get_geometry_reply(x, xcb_get_geometry(x, w), NULL);
                        if (asked && asked->width > 22 && asked->width < 400)
                            sz[0] = asked->width;
                        free(asked);
                        snprintf(b, sizeof b, "0x%x", w);
                        ev("XEMBED", b);
                        xcb_configure_window(
                            x, w, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, sz);
                        xcb_reparent_window(x, w, box, (int16_t)next, 1);
                        next = next + (int)sz[0] + 2 > 380 ? 1 : next + (int)sz[0] + 2;
                        xcb_map_window(x, w);
                        xcb_client_message_event_t c = {.response_type = XCB_CLIENT_MESSAGE,
                            .format = 32,
                            .window = w,
                            .type = xembed};
                        c.data.data32[3] = box;
                        xcb_send_event(x, 0, w, 0, (char *)&c);
                        xcb_flush(x);
                    }
                }
                free(g);
            }
        }
    }
}
