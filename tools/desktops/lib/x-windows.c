/* x-windows PID              lists the windows of a process, one a line, outer windows first:
 *                              ID X Y WIDTH HEIGHT viewable|hidden toplevel|embedded|inner
 *                            X and Y are those of the inner edge on the screen; `embedded` is a
 * window inside another process's window (an item in a panel), `inner` one inside another window of
 * the same process.
 * x-windows --tray-manager   true (status 0) when somebody owns the tray for XEmbed icons
 * x-windows --close PID      asks its outer windows to close, as their close buttons would
 *
 * The server is asked which process a window belongs to: no window needs to say it of itself. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

enum { MaxDepth = 32 };

static xcb_connection_t *x;
static xcb_window_t root;
static int closing;

/* The window manager's frame belongs to another process as well: what tells it from a panel's slot
 * is that the window manager gives what it frames a WM_STATE. */
static int has_property(xcb_window_t window, const char *name)
{
    xcb_intern_atom_reply_t *atom
        = xcb_intern_atom_reply(x, xcb_intern_atom(x, 1, (uint16_t)strlen(name), name), NULL);
    int has = 0;
    if (atom && atom->atom) {
        xcb_get_property_reply_t *property = xcb_get_property_reply(
            x, xcb_get_property(x, 0, window, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, 1), NULL);
        has = property && property->type != XCB_NONE;
        free(property);
    }
    free(atom);
    return has;
}

static long owner(xcb_window_t window)
{
    xcb_res_client_id_spec_t spec = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    xcb_res_query_client_ids_reply_t *reply
        = xcb_res_query_client_ids_reply(x, xcb_res_query_client_ids(x, 1, &spec), NULL);
    long pid = -1;
    if (reply) {
        xcb_res_client_id_value_iterator_t ids = xcb_res_query_client_ids_ids_iterator(reply);
        for (; ids.rem; xcb_res_client_id_value_next(&ids)) {
            if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID)
                && xcb_res_client_id_value_value_length(ids.data) > 0)
                pid = (long)xcb_res_client_id_value_value(ids.data)[0];
        }
        free(reply);
    }
    return pid;
}

static xcb_atom_t atom_of(const char *name)
{
    xcb_intern_atom_reply_t *reply
        = xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, (uint16_t)strlen(name), name), NULL);
    const xcb_atom_t atom = reply ? reply->atom : XCB_ATOM_NONE;
    free(reply);
    return atom;
}

static void ask_to_close(xcb_window_t window)
{
    const xcb_client_message_event_t event = {.response_type = XCB_CLIENT_MESSAGE,
        .format = 32,
        .window = window,
        .type = atom_of("WM_PROTOCOLS"),
        .data.data32 = {atom_of("WM_DELETE_WINDOW"), XCB_CURRENT_TIME}};
    xcb_send_event(x, 0, window, XCB_EVENT_MASK_NO_EVENT, (const char *)&event);
    xcb_flush(x);
}

static void walk(xcb_window_t window, long wanted, long parent_owner, int depth)
{
    xcb_query_tree_reply_t *tree;
    if (depth > MaxDepth || !(tree = xcb_query_tree_reply(x, xcb_query_tree(x, window), NULL)))
        return;
    const xcb_window_t *children = xcb_query_tree_children(tree);
    for (int i = 0; i < xcb_query_tree_children_length(tree); i++) {
        const xcb_window_t child = children[i];
        const long pid = owner(child);
        if (pid == wanted) {
            xcb_get_geometry_reply_t *size
                = xcb_get_geometry_reply(x, xcb_get_geometry(x, child), NULL);
            xcb_get_window_attributes_reply_t *state
                = xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, child), NULL);
            xcb_translate_coordinates_reply_t *place = xcb_translate_coordinates_reply(
                x, xcb_translate_coordinates(x, child, root, 0, 0), NULL);
            if (size && state && place && state->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT) {
                const char *kind = "embedded";
                if (window == root || (parent_owner != wanted && has_property(child, "WM_STATE")))
                    kind = "toplevel";
                else if (parent_owner == wanted)
                    kind = "inner";
                if (closing && strcmp(kind, "toplevel") == 0)
                    ask_to_close(child);
                printf("0x%x %d %d %d %d %s %s\n", child, place->dst_x, place->dst_y, size->width,
                    size->height,
                    state->map_state == XCB_MAP_STATE_VIEWABLE ? "viewable" : "hidden", kind);
            }
            free(size);
            free(state);
            free(place);
        }
        walk(child, wanted, pid, depth + 1);
    }
    free(tree);
}

static int tray_manager(int screen)
{
    char name[32];
    int owned = 0;
    snprintf(name, sizeof name, "_NET_SYSTEM_TRAY_S%d", screen);
    xcb_get_selection_owner_reply_t *reply
        = xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, atom_of(name)), NULL);
    owned = reply && reply->owner != XCB_NONE;
    free(reply);
    return owned;
}

int main(int argc, char **argv)
{
    int screen_number = 0;
    closing = argc == 3 && strcmp(argv[1], "--close") == 0;
    if (argc != 2 && !closing) {
        fprintf(stderr, "usage: x-windows [--close] PID | --tray-manager\n");
        return 2;
    }
    x = xcb_connect(NULL, &screen_number);
    if (xcb_connection_has_error(x)) {
        fprintf(stderr, "x-windows: cannot open the display\n");
        return 1;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(x));
    for (int i = 0; i < screen_number && screens.rem > 1; i++)
        xcb_screen_next(&screens);
    root = screens.data->root;
    if (strcmp(argv[1], "--tray-manager") == 0)
        return tray_manager(screen_number) ? 0 : 1;

    char *end = NULL;
    const long pid = strtol(argv[argc - 1], &end, 10);
    if (pid <= 0 || *end != '\0') {
        fprintf(stderr, "x-windows: not a process id: %s\n", argv[argc - 1]);
        return 2;
    }
    /* Ids without the version asked first are refused. */
    xcb_res_query_version_reply_t *version
        = xcb_res_query_version_reply(x, xcb_res_query_version(x, 1, 2), NULL);
    if (!version) {
        fprintf(stderr, "x-windows: the display cannot tell processes apart\n");
        return 1;
    }
    free(version);
    walk(root, pid, -1, 0);
    xcb_disconnect(x);
    return 0;
}
