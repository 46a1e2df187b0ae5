/* x-settings [NAME=VALUE...]   is the settings manager of the display (XSETTINGS): publishes text
 *                              settings such as Net/ThemeName=Adwaita-dark, and numbers such as
 *                              Gdk/WindowScalingFactor=#2, for as long as it runs.
 *
 * A line NAME=VALUE on standard input changes or adds one; `ready` is printed when the first
 * settings stand, `changed` after each change. Ends with the display, with the end of its input, or
 * on a signal. */
#include <poll.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <xcb/xcb.h>

enum { MaxSettings = 32, MaxText = 200 };

struct setting {
    char name[MaxText];
    char value[MaxText];
    uint32_t serial;
};

static struct setting settings[MaxSettings];
static size_t count;
static uint32_t serial;
static xcb_connection_t *x;
static xcb_window_t window;

static xcb_atom_t atom(const char *name)
{
    xcb_intern_atom_reply_t *reply
        = xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, (uint16_t)strlen(name), name), NULL);
    xcb_atom_t value = reply ? reply->atom : XCB_NONE;
    free(reply);
    return value;
}

static int set(const char *text)
{
    const char *equals = strchr(text, '=');
    size_t i = 0;
    if (!equals || equals == text || (size_t)(equals - text) >= MaxText
        || strlen(equals + 1) >= MaxText)
        return 0;
    const size_t length = (size_t)(equals - text);
    while (i < count
        && !(strlen(settings[i].name) == length && memcmp(settings[i].name, text, length) == 0))
        i++;
    if (i == MaxSettings)
        return 0;
    if (i == count)
        count++;
    memcpy(settings[i].name, text, length);
    settings[i].name[length] = '\0';
    strcpy(settings[i].value, equals + 1);
    settings[i].serial = ++serial;
    return 1;
}

static unsigned char *put(unsigned char *at, const void *bytes, size_t size, size_t padded)
{
    memset(at, 0, padded);
    memcpy(at, bytes, size);
    return at + padded;
}

static size_t up(size_t size)
{
    return (size + 3) & ~(size_t)3;
}

/* The layout is that of the XSETTINGS specification, in this machine's byte order. */
static void publish(void)
{
    static unsigned char data[MaxSettings * (2 * MaxText + 16) + 12];
    const uint16_t one = 1;
    const unsigned char order = *(const unsigned char *)&one == 1 ? 0 : 1;
    const uint32_t n = (uint32_t)count;
    unsigned char *at = put(data, &order, 1, 4);
    at = put(at, &serial, 4, 4);
    at = put(at, &n, 4, 4);
    for (size_t i = 0; i < count; i++) {
        const uint16_t name_length = (uint16_t)strlen(settings[i].name);
        const uint32_t value_length = (uint32_t)strlen(settings[i].value);
        const unsigned char is_text = settings[i].value[0] != '#';
        const int32_t number = is_text ? 0 : (int32_t)strtol(settings[i].value + 1, NULL, 10);
        at = put(at, &is_text, 1, 2);
        at = put(at, &name_length, 2, 2);
        at = put(at, settings[i].name, name_length, up(name_length));
        at = put(at, &settings[i].serial, 4, 4);
        if (!is_text) {
            at = put(at, &number, 4, 4);
            continue;
        }
        at = put(at, &value_length, 4, 4);
        at = put(at, settings[i].value, value_length, up(value_length));
    }
    const xcb_atom_t type = atom("_XSETTINGS_SETTINGS");
    xcb_change_property(
        x, XCB_PROP_MODE_REPLACE, window, type, type, 8, (uint32_t)(at - data), data);
    xcb_flush(x);
}

int main(int argc, char **argv)
{
    int screen_number = 0;
    for (int i = 1; i < argc; i++) {
        if (!set(argv[i])) {
            fprintf(stderr, "usage: x-settings [NAME=VALUE...]\n");
            return 2;
        }
    }
    x = xcb_connect(NULL, &screen_number);
    if (xcb_connection_has_error(x)) {
        fprintf(stderr, "x-settings: cannot open the display\n");
        return 1;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(x));
    for (int i = 0; i < screen_number && screens.rem > 1; i++)
        xcb_screen_next(&screens);
    const xcb_window_t root = screens.data->root;
    char name[32];
    snprintf(name, sizeof name, "_XSETTINGS_S%d", screen_number);
    const xcb_atom_t selection = atom(name), manager = atom("MANAGER");

    xcb_get_selection_owner_reply_t *owner
        = xcb_get_selection_owner_reply(x, xcb_get_selection_owner(x, selection), NULL);
    if (!owner || owner->owner != XCB_NONE) {
        fprintf(stderr, "x-settings: the display has a settings manager already\n");
        return 1;
    }
    free(owner);
    window = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window, root, -10, -10, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, NULL);
    publish();
    xcb_set_selection_owner(x, window, selection, XCB_CURRENT_TIME);
    xcb_client_message_event_t hello
        = {.response_type = XCB_CLIENT_MESSAGE, .format = 32, .window = root, .type = manager};
    hello.data.data32[1] = selection;
    hello.data.data32[2] = window;
    xcb_send_event(x, 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY, (const char *)&hello);
    xcb_flush(x);
    puts("ready");
    fflush(stdout);

    struct pollfd fds[2] = {{xcb_get_file_descriptor(x), POLLIN, 0}, {0, POLLIN, 0}};
    char line[2 * MaxText + 2];
    /* Unbuffered, so that poll() sees every line that waits. */
    setvbuf(stdin, NULL, _IONBF, 0);
    while (poll(fds, 2, -1) >= 0) {
        xcb_generic_event_t *event;
        while ((event = xcb_poll_for_event(x)))
            free(event);
        if (xcb_connection_has_error(x))
            return 0;
        if (fds[1].revents) {
            if (!fgets(line, sizeof line, stdin))
                return 0;
            line[strcspn(line, "\n")] = '\0';
            if (set(line)) {
                publish();
                puts("changed");
                fflush(stdout);
            }
        }
    }
    return 1;
}
