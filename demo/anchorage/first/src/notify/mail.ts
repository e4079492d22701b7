/** Hands a mail to the harbour's own server. */
export interface Mailer {
    send(to: string, subject: string, text: string): Promise<void>;
}
